#include "scaler_isp/settings/IniReader.h"

#include <cerrno>
#include <cstddef>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/FileBytes.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/common/Utf8.h"
#include "scaler_isp/settings/IniLines.h"

namespace {

/// The complete lines at the start of a file that are ASCII. They are the same text in every
/// encoding that is ASCII-compatible, so the rest of the file need not be known.
std::string_view AsciiLines(std::string_view head) {
    head = head.substr(0, AsciiPrefix(head));
    return head.substr(0, head.rfind('\n') + 1);
}

} // namespace

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

IniResult FindInFile(const std::string &path, TextFileEncoding::Charset charset,
                     std::wstring_view section, std::wstring_view key, std::wstring &value) {
    TextFileEncoding encoding(charset);
    try {
        FileReader file(path);
        if (encoding.IsAsciiCompatible()) {
            const std::string_view lines = AsciiLines(file.Head());
            const IniResult result = FindIniValue(encoding, lines, section, key, value);
            if (result != IniResult::EndOfFile) {
                return result;
            }
        }
        return FindIniValue(encoding, encoding.Decode(file.All()), section, key, value);
    } catch (const CallFailure &failure) {
        if (!IsErrorOfPath(failure.Error())) {
            throw;
        }
        // A directory can be opened, but not read.
        return failure.Error() == EISDIR ? IniResult::EndOfFile : IniResult::NoFile;
    }
}

IniReader::IniReader(const std::string &path) : m_encoding(TextFileEncoding::Charset::Environment) {
    try {
        m_text = m_encoding.Decode(ReadFileBytes(path));
    } catch (const CallFailure &failure) {
        if (!IsErrorOfPath(failure.Error())) {
            throw;
        }
    }
}

std::wstring IniReader::String(std::wstring_view section, std::wstring_view key) const {
    std::wstring value;
    FindIniValue(m_encoding, m_text, section, key, value);
    return value;
}

int IniReader::Number(std::wstring_view section, std::wstring_view key, int defaultValue) const {
    const std::wstring value = String(section, key);
    const wchar_t *end = nullptr;
    return value.empty() ? defaultValue : static_cast<int>(ParseLongLong(value.c_str(), &end));
}
