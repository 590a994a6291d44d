#include "scaler_isp/settings/IniReader.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/settings/ProfileFile.h"
#include "scaler_isp/settings/ProfileLookup.h"
IniReader::IniReader(const std::string &path) : m_bytes(ReadProfileFile(path).bytes) {}
std::wstring IniReader::String(std::wstring_view section, std::wstring_view key) const {
    std::wstring value;
    return LookUpValue(m_bytes, section, key, value) == Lookup::Found ? value : std::wstring();
}
int IniReader::Number(std::wstring_view section, std::wstring_view key, int defaultValue) const {
    const std::wstring text = String(section, key);
    const wchar_t *end = nullptr;
    return text.empty() ? defaultValue : static_cast<int>(ParseLongLong(text.c_str(), &end));
}
