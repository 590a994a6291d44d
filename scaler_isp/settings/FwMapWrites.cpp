#include "scaler_isp/settings/FwMapWrites.h"

#include "scaler_isp/common/TextConversion.h"

namespace {

constexpr std::size_t kKeysPerBank = 3;
/// UNITS: characters of the longest name with its number, "fw-2147483648_TargetBank-2147483648".
constexpr std::size_t kLongestWrite = 24 + 11;

} // namespace

FwMapWrites::FwMapWrites(unsigned int count, std::size_t banks) {
    const std::size_t writes = 1 + kKeysPerBank * banks;
    m_characters.reserve(writes * kLongestWrite);
    m_writes.reserve(writes);
    m_writes.push_back({L"fwFileCount", Number(count)});
}

void FwMapWrites::AddBank(unsigned int targetKey, unsigned int targetValue,
                          std::wstring_view path) {
    m_writes.push_back({Name(targetKey, L"_TargetBank"), Number(targetValue)});
    m_writes.push_back({Name(m_banks, L"_FileBank"), Number(m_banks)});
    m_writes.push_back({Name(m_banks, L"_Path"), path});
    ++m_banks;
}

void FwMapWrites::Save(const std::wstring &iniFile) const {
    EditIniFile(Utf8FromWide(iniFile), TextFileEncoding::Charset::Environment, L"ISP_Fw", m_writes);
}

/// As a signed number, because these files have always been written with "%d".
std::wstring_view FwMapWrites::Number(unsigned int value) {
    const std::size_t begin = m_characters.size();
    const std::string digits = std::to_string(static_cast<int>(value));
    m_characters.append(digits.begin(), digits.end());
    return std::wstring_view(m_characters).substr(begin);
}

std::wstring_view FwMapWrites::Name(unsigned int number, std::wstring_view suffix) {
    const std::size_t begin = m_characters.size();
    m_characters += L"fw";
    Number(number);
    m_characters += suffix;
    return std::wstring_view(m_characters).substr(begin);
}
