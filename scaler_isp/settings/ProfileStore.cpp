#include "scaler_isp/settings/ProfileStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/settings/IniEdit.h"
#include "scaler_isp/settings/IniReader.h"

namespace {

using Charset = TextFileEncoding::Charset;

/// What differs between the two families. Inside, a byte of the narrow one is the character U+00n.
template <class Char> struct Family;

template <> struct Family<wchar_t> {
    static constexpr Charset kCharset = Charset::Environment;
    static constexpr bool kMissingFileIsAnError = false;
    static std::wstring ToWide(std::wstring_view text) {
        return std::wstring(text);
    }
    static std::wstring FromWide(std::wstring text) {
        return text;
    }
    static std::string FileName(std::wstring_view name) {
        return Utf8FromWide(std::wstring(name));
    }
};

template <> struct Family<char> {
    static constexpr Charset kCharset = Charset::Bytes;
    static constexpr bool kMissingFileIsAnError = true;
    static std::wstring ToWide(std::string_view text) {
        return TextFileEncoding(kCharset).FromText(text);
    }
    static std::string FromWide(const std::wstring &text) {
        std::string bytes;
        TextFileEncoding(kCharset).ToText(text, bytes);
        return bytes;
    }
    static std::string FileName(std::string_view name) {
        return std::string(name);
    }
};

template <class Char> std::basic_string_view<Char> OrEmpty(const Char *text) {
    return text != nullptr ? std::basic_string_view<Char>(text) : std::basic_string_view<Char>();
}

/// RETURNS the number of characters copied.
template <class Char>
unsigned int CopyOut(std::basic_string_view<Char> text, Char *buffer, unsigned int size) {
    if (buffer == nullptr || size == 0) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
    std::char_traits<Char>::move(buffer, text.data(),
                                 count); // a caller's default may be the buffer
    buffer[count] = Char('\0');
    return static_cast<unsigned int>(count);
}

/// Looks a key up. A file that cannot be read counts as one that cannot be opened.
template <class Char>
IniResult LookUp(const Char *section, const Char *key, const Char *fileName,
                 std::basic_string<Char> &value) {
    using Names = Family<Char>;
    try {
        std::wstring wide;
        const IniReader reader(Names::FileName(OrEmpty(fileName)), Names::kCharset);
        const IniResult result =
            reader.Find(Names::ToWide(OrEmpty(section)), Names::ToWide(OrEmpty(key)), wide);
        value = Names::FromWide(wide);
        return result;
    } catch (const CallFailure &) {
        return IniResult::NoFile;
    }
}

/// What the narrow family prints.
template <class Char> void ReportMissingFile() {
    if (Family<Char>::kMissingFileIsAnError) {
        std::printf("Error \n");
    }
}

template <class Char>
unsigned int GetString(const Char *section, const Char *key, const Char *defaultValue, Char *buffer,
                       unsigned int size, const Char *fileName) {
    return ResultOrOnThrow(0U, [&]() -> unsigned int {
        std::basic_string<Char> value;
        switch (LookUp(section, key, fileName, value)) {
        case IniResult::Found:
            return CopyOut<Char>(value, buffer, size);
        case IniResult::EndOfSection:
            return 0;
        case IniResult::NoFile:
            ReportMissingFile<Char>();
            if (Family<Char>::kMissingFileIsAnError) {
                return 0;
            }
            break;
        case IniResult::EndOfFile:
            break;
        }
        CopyOut(OrEmpty(defaultValue), buffer, size);
        return 0;
    });
}

template <class Char>
int GetInt(const Char *section, const Char *key, int defaultValue, const Char *fileName) {
    return ResultOrOnThrow(defaultValue, [&] {
        std::basic_string<Char> value;
        if (LookUp(section, key, fileName, value) == IniResult::NoFile) {
            ReportMissingFile<Char>();
        }
        const Char *end = nullptr;
        return value.empty() ? defaultValue : static_cast<int>(ParseLongLong(value.c_str(), &end));
    });
}

template <class Char>
int WriteKey(const Char *section, const Char *key, const Char *value, const Char *fileName) {
    return ResultOrOnThrow(0, [&] {
        using Names = Family<Char>;
        const std::wstring wideKey = Names::ToWide(OrEmpty(key));
        const std::wstring wideValue = Names::ToWide(OrEmpty(value));
        const IniWrite write{wideKey, wideValue};
        return EditIniFile(Names::FileName(OrEmpty(fileName)), Names::kCharset,
                           Names::ToWide(OrEmpty(section)), {&write, 1});
    });
}

} // namespace

unsigned int CpNxGetPrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                          const wchar_t *defaultValue, wchar_t *buffer,
                                          unsigned int size, const wchar_t *fileName) {
    return GetString(section, key, defaultValue, buffer, size, fileName);
}

int CpNxGetPrivateProfileIntW(const wchar_t *section, const wchar_t *key, int defaultValue,
                              const wchar_t *fileName) {
    return GetInt(section, key, defaultValue, fileName);
}

int CpNxWritePrivateProfileStringW(const wchar_t *section, const wchar_t *key, const wchar_t *value,
                                   const wchar_t *fileName) {
    return WriteKey(section, key, value, fileName);
}

unsigned int CpNxGetPrivateProfileStringA(const char *section, const char *key,
                                          const char *defaultValue, char *buffer, unsigned int size,
                                          const char *fileName) {
    return GetString(section, key, defaultValue, buffer, size, fileName);
}

int CpNxGetPrivateProfileIntA(const char *section, const char *key, int defaultValue,
                              const char *fileName) {
    return GetInt(section, key, defaultValue, fileName);
}

int CpNxWritePrivateProfileStringA(const char *section, const char *key, const char *value,
                                   const char *fileName) {
    return WriteKey(section, key, value, fileName);
}
