#ifndef SCALER_ISP_SIMULATOR_COMMON_EXCEPTION_BARRIER_H
#define SCALER_ISP_SIMULATOR_COMMON_EXCEPTION_BARRIER_H

#include <cstdlib> // tells which C library this is

#if defined(__GLIBC__) && defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

namespace virtual_scaler {

/// Runs the body of an exported function; nothing but its value leaves it. A thread that a callback
/// ends (pthread_exit) is let go: glibc unwinds it like an exception that must not be swallowed.
template <class Value, class Body> Value CatchAll(Value failed, Body &&body) {
    try {
        return body();
    }
#if defined(__GLIBC__) && defined(__GLIBCXX__)
    catch (abi::__forced_unwind &) {
        throw;
    }
#endif
    catch (...) {
        return failed;
    }
}

} // namespace virtual_scaler

#endif
