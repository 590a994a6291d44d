#include "scaler_isp/settings/ProfileStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/settings/IniEdit.h"
#include "scaler_isp/settings/IniReader.h"

namespace {

/// Whether the functions are of the narrow family, whose files have one byte per character.
template <class Char> constexpr bool kIsNarrow = sizeof(Char) == 1;
template <class Char>
constexpr auto kCharset =
    kIsNarrow<Char> ? TextFileEncoding::Charset::Bytes : TextFileEncoding::Charset::Environment;

/// Internally, a byte of the narrow family is the character U+00n. Null counts as empty.
std::wstring ToWide(const wchar_t *text) {
    return text != nullptr ? text : L"";
}
std::wstring ToWide(const char *text) {
    return TextFileEncoding(kCharset<char>).FromText(text != nullptr ? text : "");
}

std::string FileName(const wchar_t *name) {
    return Utf8FromWide(ToWide(name));
}
std::string FileName(const char *name) {
    return name != nullptr ? name : "";
}

/// RETURNS the number of characters copied.
template <class Char>
unsigned int CopyOut(std::basic_string_view<Char> text, Char *buffer, unsigned int size) {
    if (buffer == nullptr || size == 0) {
        return 0;
    }
    const std::size_t count = std::min<std::size_t>(text.size(), size - 1);
    // move, because a caller's default may be the buffer itself.
    std::char_traits<Char>::move(buffer, text.data(), count);
    buffer[count] = Char('\0');
    return static_cast<unsigned int>(count);
}

/// Looks up a key. A file that cannot be read is treated as one that cannot be opened.
template <class Char>
IniResult Search(const Char *section, const Char *key, const Char *fileName, std::wstring &value) {
    try {
        return FindInFile(FileName(fileName), kCharset<Char>, ToWide(section), ToWide(key), value);
    } catch (const CallFailure &) {
        return IniResult::NoFile;
    }
}

template <class Char>
IniResult LookUp(const Char *section, const Char *key, const Char *fileName,
                 std::basic_string<Char> &value) {
    std::wstring wide;
    const IniResult result = Search(section, key, fileName, wide);
    if (result == IniResult::NoFile && kIsNarrow<Char>) {
        std::printf("Error \n");
    }
    value.assign(wide.begin(), wide.end());
    return result;
}

template <class Char>
unsigned int GetString(const Char *section, const Char *key, const Char *defaultValue, Char *buffer,
                       unsigned int size, const Char *fileName) {
    return CatchAll(0U, [&]() -> unsigned int {
        std::basic_string<Char> value;
        const IniResult result = LookUp(section, key, fileName, value);
        if (result == IniResult::Found) {
            return CopyOut<Char>(value, buffer, size);
        }
        const bool narrowWithoutFile = result == IniResult::NoFile && kIsNarrow<Char>;
        if (result != IniResult::EndOfSection && !narrowWithoutFile) {
            CopyOut<Char>(defaultValue != nullptr ? defaultValue : std::basic_string_view<Char>(),
                          buffer, size);
        }
        return 0;
    });
}

template <class Char>
int GetInt(const Char *section, const Char *key, int defaultValue, const Char *fileName) {
    return CatchAll(defaultValue, [&] {
        std::basic_string<Char> value;
        LookUp(section, key, fileName, value);
        const Char *end = nullptr;
        return value.empty() ? defaultValue : static_cast<int>(ParseLongLong(value.c_str(), &end));
    });
}

template <class Char>
int WriteKey(const Char *section, const Char *key, const Char *value, const Char *fileName) {
    return CatchAll(0, [&] {
        const std::wstring wideKey = ToWide(key);
        const std::wstring wideValue = ToWide(value);
        const IniWrite write{wideKey, wideValue};
        return EditIniFile(FileName(fileName), kCharset<Char>, ToWide(section), {&write, 1});
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
