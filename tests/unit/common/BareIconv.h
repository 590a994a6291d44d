#ifndef TESTS_UNIT_COMMON_BARE_ICONV_H
#define TESTS_UNIT_COMMON_BARE_ICONV_H

#include <cstddef>
#include <iconv.h>
#include <string>

/// One conversion by the system, with a descriptor of its own.
/// RETURNS the converted bytes; nothing if the input is invalid or fills the capacity.
inline std::string BareIconv(const char *to, const char *from, std::string input,
                             std::size_t capacity) {
    iconv_t descriptor = iconv_open(to, from);
    std::string output(capacity, '\0');
    char *in = input.data();
    char *out = output.data();
    std::size_t inLeft = input.size();
    std::size_t outLeft = capacity;
    const std::size_t result = iconv(descriptor, &in, &inLeft, &out, &outLeft);
    iconv_close(descriptor);
    output.resize(capacity - outLeft);
    return result == static_cast<std::size_t>(-1) || output.size() == capacity ? "" : output;
}

/// UTF-32LE, as the system writes it; an incomplete character at the end is left out.
inline std::wstring FromLittleEndian(const std::string &bytes) {
    std::wstring text;
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        unsigned long value = 0;
        for (std::size_t i = 4; i-- > 0;) {
            value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
        }
        text += static_cast<wchar_t>(value);
    }
    return text;
}

inline std::string ToLittleEndian(const std::wstring &text) {
    std::string bytes;
    for (const wchar_t character : text) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>(static_cast<unsigned long>(character) >> shift & 0xFFU);
        }
    }
    return bytes;
}

#endif
