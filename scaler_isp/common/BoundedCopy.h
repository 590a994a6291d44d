#ifndef SCALER_ISP_COMMON_BOUNDED_COPY_H
#define SCALER_ISP_COMMON_BOUNDED_COPY_H

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// Copies strings to and from fixed-size fields of a record. A string as long as the field or
/// longer fills it without a terminator, so a field must not be read as a C string.

/// Copies at most `size` characters and zeroes the rest of the field.
template <class Char>
void CopyBounded(Char *field, std::size_t size, std::basic_string_view<Char> text) {
    Char *end = std::copy_n(text.data(), std::min(text.size(), size), field);
    std::fill(end, field + size, Char{});
}

template <class Char, std::size_t N>
void CopyBounded(Char (&field)[N], std::basic_string_view<Char> text) {
    CopyBounded(field, N, text);
}

/// The string in a field of `size` characters, as a view.
template <class Char>
std::basic_string_view<Char> ViewBounded(const Char *field, std::size_t size) {
    const std::basic_string_view<Char> all(field, size);
    return all.substr(0, all.find(Char{}));
}

template <class Char, std::size_t N>
std::basic_string_view<Char> ViewBounded(const Char (&field)[N]) {
    return ViewBounded(field, N);
}

/// The same as a copy.
template <class Char> std::basic_string<Char> ReadBounded(const Char *field, std::size_t size) {
    return std::basic_string<Char>(ViewBounded(field, size));
}

template <class Char, std::size_t N> std::basic_string<Char> ReadBounded(const Char (&field)[N]) {
    return ReadBounded(field, N);
}

#endif
