#ifndef SCALER_ISP_TESTS_FUZZ_SHOWN_TEXT_H
#define SCALER_ISP_TESTS_FUZZ_SHOWN_TEXT_H

#include <algorithm>
#include <string>

/// Whether nothing but newlines and tabs could act on a terminal; bytes from 0x80 on are not looked
/// at.
inline bool HasNoControlByte(const std::string &text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
    });
}

inline bool IsPlainAscii(const std::string &text) {
    return HasNoControlByte(text) && std::none_of(text.begin(), text.end(), [](char c) {
               return static_cast<unsigned char>(c) >= 0x80;
           });
}

#endif
