#include "scaler_isp/settings/IniReader.h"

#include <cerrno>
#include <cstddef>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/FileBytes.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/settings/IniLines.h"

IniResult FindIniValue(const TextFileEncoding &encoding, std::string_view text,
                       std::wstring_view section, std::wstring_view key, std::wstring &value) {
    std::string wantedSection;
    std::string wantedKey;
    const bool sectionExists = encoding.ToText(section, wantedSection);
    const bool keyExists = encoding.ToText(key, wantedKey);
    const std::string header = IniHeader(wantedSection);
    IniLineReader lines(encoding, text);
    std::string_view line;
    do {
        if (!lines.Next(line)) {
            return IniResult::EndOfFile;
        }
    } while (!sectionExists || line != header);
    while (lines.Next(line)) {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            return IniResult::EndOfSection;
        }
        if (keyExists && Trim(line.substr(0, equals)) == wantedKey) {
            value = encoding.FromText(Trim(line.substr(UpToLastEquals(line).size())));
            return IniResult::Found;
        }
    }
    return IniResult::EndOfFile;
}

IniReader::IniReader(const std::string &path, Charset charset) : m_encoding(charset) {
    try {
        m_text = m_encoding.Decode(ReadFileBytes(path));
    } catch (const CallFailure &failure) {
        if (!IsErrorOfPath(failure.Error())) {
            throw;
        }
        m_opened = failure.Error() == EISDIR; // a directory can be opened, but not read
    }
}

IniResult IniReader::Find(std::wstring_view section, std::wstring_view key,
                          std::wstring &value) const {
    return m_opened ? FindIniValue(m_encoding, m_text, section, key, value) : IniResult::NoFile;
}

std::wstring IniReader::String(std::wstring_view section, std::wstring_view key) const {
    std::wstring value;
    Find(section, key, value);
    return value;
}

int IniReader::Number(std::wstring_view section, std::wstring_view key, int defaultValue) const {
    const std::wstring value = String(section, key);
    const wchar_t *end = nullptr;
    return value.empty() ? defaultValue : static_cast<int>(ParseLongLong(value.c_str(), &end));
}
