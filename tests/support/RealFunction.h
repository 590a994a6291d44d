#ifndef SCALER_ISP_TESTS_SUPPORT_REAL_FUNCTION_H
#define SCALER_ISP_TESTS_SUPPORT_REAL_FUNCTION_H

#include <string>

#include <dlfcn.h>

/// How a test repeats the declaration of a function of the C library that it replaces. glibc
/// declares those noexcept that are no cancellation points, macOS none.
#if defined(__APPLE__)
#define SCALER_ISP_SYSTEM_NOEXCEPT
#else
#define SCALER_ISP_SYSTEM_NOEXCEPT noexcept
#endif

/// The function of the C library that this program replaces by one of its own. Some functions of
/// macOS have a suffix, which their declaration adds to the name of the replacement, too.
template <class Pointer> Pointer RealFunction(const char *name) {
    void *found = nullptr;
#if defined(__APPLE__)
    for (const char *suffix : {"$DARWIN_EXTSN", "$INODE64"}) {
        found = found != nullptr ? found : dlsym(RTLD_NEXT, (std::string(name) + suffix).c_str());
    }
#endif
    found = found != nullptr ? found : dlsym(RTLD_NEXT, name);
    return reinterpret_cast<Pointer>(found);
}

#endif
