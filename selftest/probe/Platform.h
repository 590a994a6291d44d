#ifndef SCALER_ISP_SELFTEST_PLATFORM_H
#define SCALER_ISP_SELFTEST_PLATFORM_H

#include <string>

/// What differs between the systems; nothing else of the program asks which one it is.

/// The assumption for this system, out of those for both; "" if there is none.
const char *PlatformAssumption(const char *onLinux, const char *onMac);

/// For what a version of macOS has changed: the assumption for the version that runs. "" on other
/// systems, and if the version is not known.
const char *PlatformAssumptionSince(int version, const char *before, const char *since);

/// Calls a function on a stack of 512 KiB: on macOS on that of a dispatch queue, which is what an
/// application would use, elsewhere on a thread of that size. RETURNS whether it could be called.
bool PlatformCallOnSmallStack(void (*function)(void *), void *argument);

/// The file name of the library.
std::string PlatformLibraryName();

#endif
