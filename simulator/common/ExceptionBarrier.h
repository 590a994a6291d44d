#ifndef SCALER_ISP_SIMULATOR_COMMON_EXCEPTION_BARRIER_H
#define SCALER_ISP_SIMULATOR_COMMON_EXCEPTION_BARRIER_H

#include <cstdlib> // defines __GLIBC__

#if defined(__GLIBC__) && defined(__GLIBCXX__)
#include <cxxabi.h>
#endif

namespace virtual_scaler {

/// Runs the body of an exported function and RETURNS failed if it throws: C callers cannot handle
/// exceptions. glibc's forced unwinding (pthread_exit in a callback) passes, because swallowing it
/// would abort the process.
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
