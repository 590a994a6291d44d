#ifndef SCALER_ISP_COMMON_PLATFORM_H
#define SCALER_ISP_COMMON_PLATFORM_H

#include <string>

/// Everything that differs between the operating systems. No other code tests for the system.

/// Path of the loaded file that contains `address`, as the loader knows it: on Linux the path by
/// which it was opened, on macOS the real path. False if there is no such file.
bool PlatformImagePath(const void *address, std::string &path);

/// Absolute path of the running executable; empty if it cannot be determined.
std::string PlatformExecutablePath();

/// Another iconv name for 32-bit wide characters, for systems that lack "UTF-32LE"; null if there
/// is none.
const char *PlatformWideCharsetFallback();

/// Whether a path that the environment's locale cannot decode is read as UTF-8.
bool PlatformPathsFallBackToUtf8();

/// Whether this library must read and write files byte for byte (byte n is U+00n) in a plain ASCII
/// locale. If false, the locale itself does so.
bool PlatformAsciiLocaleNeedsByteConversion();

/// Replaces the extended attributes and access control list of an open file with those of another.
/// RETURNS 0, or errno.
int PlatformCopyAttributes(int from, int to);

#endif
