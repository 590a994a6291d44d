#ifndef SCALER_ISP_TESTS_UNIT_SETTINGS_PROFILE_FAMILIES_H
#define SCALER_ISP_TESTS_UNIT_SETTINGS_PROFILE_FAMILIES_H

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "scaler_isp/settings/ProfileStore.h"

/// One interface over the two families, so that a test can run on both. Texts here are bytes; the
/// wide family takes them as U+00n.

constexpr unsigned int kBufferChars = 1100;

/// What a string getter returned, and what the buffer held before its first NUL afterwards.
struct ReadResult {
    unsigned int result;
    std::string text;
    bool operator==(const ReadResult &other) const {
        return result == other.result && text == other.text;
    }
};

inline std::ostream &operator<<(std::ostream &stream, const ReadResult &got) {
    return stream << got.result << " \"" << got.text << '"';
}

inline std::wstring Wide(const std::string &text) {
    std::wstring wide;
    for (const char byte : text) {
        wide += static_cast<wchar_t>(static_cast<unsigned char>(byte));
    }
    return wide;
}

inline std::string Narrow(const std::wstring &text) {
    std::string narrow;
    for (const wchar_t character : text) {
        narrow += static_cast<char>(character);
    }
    return narrow;
}

struct WideFamily {
    static ReadResult Get(const std::string &file, const std::string &section,
                          const std::string &key, const std::string &defaultValue = "dflt",
                          unsigned int size = kBufferChars) {
        std::vector<wchar_t> buffer(kBufferChars, L'~');
        buffer[3] = L'\0';
        const unsigned int result = CpNxGetPrivateProfileStringW(
            Wide(section).c_str(), Wide(key).c_str(), Wide(defaultValue).c_str(), buffer.data(),
            size, Wide(file).c_str());
        return {result, Narrow(buffer.data())};
    }
    static int GetInt(const std::string &file, const std::string &section, const std::string &key,
                      int defaultValue = -77) {
        return CpNxGetPrivateProfileIntW(Wide(section).c_str(), Wide(key).c_str(), defaultValue,
                                         Wide(file).c_str());
    }
    static int Write(const std::string &file, const std::string &section, const std::string &key,
                     const std::string &value) {
        return CpNxWritePrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(),
                                              Wide(value).c_str(), Wide(file).c_str());
    }
};

struct NarrowFamily {
    static ReadResult Get(const std::string &file, const std::string &section,
                          const std::string &key, const std::string &defaultValue = "dflt",
                          unsigned int size = kBufferChars) {
        std::vector<char> buffer(kBufferChars, '~');
        buffer[3] = '\0';
        const unsigned int result = CpNxGetPrivateProfileStringA(
            section.c_str(), key.c_str(), defaultValue.c_str(), buffer.data(), size, file.c_str());
        return {result, buffer.data()};
    }
    static int GetInt(const std::string &file, const std::string &section, const std::string &key,
                      int defaultValue = -77) {
        return CpNxGetPrivateProfileIntA(section.c_str(), key.c_str(), defaultValue, file.c_str());
    }
    static int Write(const std::string &file, const std::string &section, const std::string &key,
                     const std::string &value) {
        return CpNxWritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(),
                                              file.c_str());
    }
};

/// What the buffer of Get holds where nothing was copied into it.
constexpr const char *kUntouched = "~~~";

#endif
