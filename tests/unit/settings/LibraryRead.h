#ifndef TESTS_UNIT_SETTINGS_LIBRARY_READ_H
#define TESTS_UNIT_SETTINGS_LIBRARY_READ_H

#include <string>

#include "scaler_isp/settings/IniReader.h"
#include "unit/settings/ReferenceProfile.h"

/// What a getter has to do after a search, as the second version says it. The default is "dflt".
inline reference::Read AfterSearch(IniResult result, const std::wstring &value) {
    switch (result) {
    case IniResult::Found:
        return {static_cast<unsigned int>(value.size()), value};
    case IniResult::EndOfSection:
        return {0, std::nullopt};
    case IniResult::EndOfFile:
        return {0, L"dflt"};
    case IniResult::NoFile:
        break;
    }
    return {0, L"no file"};
}

/// The library's search of a text that is known to its end.
inline reference::Read ReadByLibrary(const std::string &bytes, TextFileEncoding::Charset charset,
                                     const std::wstring &section, const std::wstring &key) {
    TextFileEncoding encoding(charset);
    const std::string text = encoding.Decode(bytes);
    std::wstring value;
    const IniResult result = FindIniValue(encoding, text, section, key, value);
    return AfterSearch(result, value);
}

/// Its search of a file.
inline reference::Read ReadFileByLibrary(const std::string &path, TextFileEncoding::Charset charset,
                                         const std::wstring &section, const std::wstring &key) {
    std::wstring value;
    const IniResult result = FindInFile(path, charset, section, key, value);
    return AfterSearch(result, value);
}

#endif
