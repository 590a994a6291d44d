#ifndef SCALER_ISP_COMMON_NUMBERS_H
#define SCALER_ISP_COMMON_NUMBERS_H

/// Parse numbers whose prefix selects the base: 16 after 0x or 0X, 8 after a leading zero, else 10.
/// The base is not left to the C library (base 0), because newer ones also accept 0b. Leading white
/// space and a sign are accepted; values outside the type are clamped, as by strtoll.
/// \param end  set to the first character that was not used.

long ParseLong(const char *text, const char **end);
long long ParseLongLong(const char *text, const char **end);
long long ParseLongLong(const wchar_t *text, const wchar_t **end);

#endif
