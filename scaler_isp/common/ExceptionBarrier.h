#ifndef SCALER_ISP_COMMON_EXCEPTION_BARRIER_H
#define SCALER_ISP_COMMON_EXCEPTION_BARRIER_H

#include <utility>

#if defined(__GLIBC__) && defined(__GLIBCXX__)
#include <cxxabi.h>
/// The pseudo exception has no object: a sanitizer would take its handler for a null reference,
/// here or, were it inlined, in the caller.
#define SCALER_ISP_NO_NULL_SANITIZER __attribute__((no_sanitize("null"), noinline))
#else
#define SCALER_ISP_NO_NULL_SANITIZER
#endif

/// Runs the body of a function that other binaries call and turns every exception into a result.
///
/// glibc unwinds a thread that ends in pthread_exit or is cancelled with a pseudo exception that
/// must not be swallowed; it passes through.
template <class Result, class Body>
SCALER_ISP_NO_NULL_SANITIZER Result CatchAll(Result onThrow, Body &&body) {
    try {
        return std::forward<Body>(body)();
    }
#if defined(__GLIBC__) && defined(__GLIBCXX__)
    catch (abi::__forced_unwind &) {
        throw;
    }
#endif
    catch (...) {
        return onThrow;
    }
}

/// The same for a function without a result.
template <class Body> void CatchAll(Body &&body) {
    CatchAll(0, [&] {
        std::forward<Body>(body)();
        return 0;
    });
}

#undef SCALER_ISP_NO_NULL_SANITIZER

#endif
