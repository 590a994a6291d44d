#ifndef SCALER_ISP_COMMON_PLATFORM_H
#define SCALER_ISP_COMMON_PLATFORM_H

#include <string>

/// Everything that differs between the systems the library runs on. Nothing else asks where it is.

/// Path of the file that holds `address`, as the loader knows it; links are not followed. False
/// when the address belongs to no loaded file.
bool PlatformImagePath(const void *address, std::string &path);

/// Full path of the running executable; empty when it cannot be found.
std::string PlatformExecutablePath();

/// iconv's name for 32-bit wide characters where "UTF-32LE" cannot be opened; null where there is
/// none. It may take characters above U+10FFFF, which the caller refuses.
const char *PlatformWideCharsetFallback();

/// Whether a path that the environment's locale cannot express is taken as UTF-8.
bool PlatformPathsFallBackToUtf8();

/// Whether files in a plain ASCII locale are read and written byte for byte (byte n is U+00n).
/// Where this is false the locale itself does so.
bool PlatformAsciiLocaleNeedsByteConversion();

/// Gives an open file the extended attributes and access control list of another one, and no
/// others. RETURNS 0, or errno.
int PlatformCopyAttributes(int from, int to);

#endif
