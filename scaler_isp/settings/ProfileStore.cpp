#include "scaler_isp/settings/ProfileStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/settings/ProfileEdit.h"
#include "scaler_isp/settings/ProfileEncoding.h"
#include "scaler_isp/settings/ProfileFile.h"
#include "scaler_isp/settings/ProfileLines.h"
#include "scaler_isp/settings/ProfileLookup.h"

namespace {

template <class Char> std::basic_string_view<Char> OrEmpty(const Char *text) {
    return text != nullptr ? std::basic_string_view<Char>(text) : std::basic_string_view<Char>();
}

/// The narrow name of a file; empty, which no file has, where it cannot be expressed.
std::string NarrowName(const wchar_t *name) {
    return CCpTransform().ConvertUnicodeStringToUTF8(std::wstring(OrEmpty(name)));
}

std::string NarrowName(const char *name) {
    return std::string(OrEmpty(name));
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

enum class MissingFile { GivesDefault, IsAnError };

template <MissingFile missing, class Char>
unsigned int GetString(const Char *section, const Char *key, const Char *defaultValue, Char *buffer,
                       unsigned int size, const Char *fileName) {
    return ResultOrOnThrow(0U, [&]() -> unsigned int {
        const ProfileBytes file = ReadProfileFile(NarrowName(fileName));
        if (!file.opened && missing == MissingFile::IsAnError) {
            std::printf("Error \n");
            return 0;
        }
        std::basic_string<Char> value;
        switch (LookUpValue(file.bytes, OrEmpty(section), OrEmpty(key), value)) {
        case Lookup::Found:
            return CopyOut<Char>(value, buffer, size);
        case Lookup::EndOfSection:
            return 0;
        case Lookup::EndOfFile:
            break;
        }
        CopyOut(OrEmpty(defaultValue), buffer, size);
        return 0;
    });
}

template <MissingFile missing, class Char>
int GetInt(const Char *section, const Char *key, int defaultValue, const Char *fileName) {
    std::array<Char, kProfileLineLimit + 1> text{};
    const Char *noDefault = nullptr;
    const unsigned int length = GetString<missing>(
        section, key, noDefault, text.data(), static_cast<unsigned int>(text.size()), fileName);
    const Char *end = nullptr;
    return length != 0 ? static_cast<int>(ParseLongLong(text.data(), &end)) : defaultValue;
}

template <class Encoding, class Char = typename Encoding::Char>
int WriteKey(const Char *section, const Char *key, const Char *value, const Char *fileName) {
    return ResultOrOnThrow(0, [&] {
        const KeyWrite<Char> write{OrEmpty(section), OrEmpty(key), OrEmpty(value)};
        const std::string path = NarrowName(fileName);
        Encoding encoding;
        const ProfileBytes before = ReadProfileFile(path);
        std::string after;
        if (!EditProfileBytes(encoding, before.bytes, write, after)) {
            return 0;
        }
        const RewriteResult result = RewriteProfileFile(path, after, before);
        if (result == RewriteResult::CannotOpen) {
            std::printf("%s", kProfileOpenError);
        }
        return result == RewriteResult::Written ? 1 : 0;
    });
}

} // namespace

unsigned int CpNxGetPrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                          const wchar_t *defaultValue, wchar_t *buffer,
                                          unsigned int size, const wchar_t *fileName) {
    return GetString<MissingFile::GivesDefault>(section, key, defaultValue, buffer, size, fileName);
}

int CpNxGetPrivateProfileIntW(const wchar_t *section, const wchar_t *key, int defaultValue,
                              const wchar_t *fileName) {
    return GetInt<MissingFile::GivesDefault>(section, key, defaultValue, fileName);
}

int CpNxWritePrivateProfileStringW(const wchar_t *section, const wchar_t *key, const wchar_t *value,
                                   const wchar_t *fileName) {
    return WriteKey<NativeEncoding>(section, key, value, fileName);
}

unsigned int CpNxGetPrivateProfileStringA(const char *section, const char *key,
                                          const char *defaultValue, char *buffer, unsigned int size,
                                          const char *fileName) {
    return GetString<MissingFile::IsAnError>(section, key, defaultValue, buffer, size, fileName);
}

int CpNxGetPrivateProfileIntA(const char *section, const char *key, int defaultValue,
                              const char *fileName) {
    return GetInt<MissingFile::IsAnError>(section, key, defaultValue, fileName);
}

int CpNxWritePrivateProfileStringA(const char *section, const char *key, const char *value,
                                   const char *fileName) {
    return WriteKey<ByteEncoding>(section, key, value, fileName);
}
