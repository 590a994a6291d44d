#ifndef SCALER_ISP_COMMON_EXCEPTION_BARRIER_H
#define SCALER_ISP_COMMON_EXCEPTION_BARRIER_H

#include <utility>

#if defined(__GLIBC__) && defined(__GLIBCXX__)
#include <cxxabi.h>
/// The pseudo exception has no object, so a sanitizer would report its handler as binding a null
/// reference, here or, if inlined, in the caller.
#define SCALER_ISP_NO_NULL_SANITIZER __attribute__((no_sanitize("null"), noinline))
#else
#define SCALER_ISP_NO_NULL_SANITIZER
#endif

/// Runs the body of a function that other binaries call. Every exception becomes the result
/// `fallback`, because none may cross into a binary built with another runtime or language.
///
/// glibc unwinds a thread that is cancelled or calls pthread_exit with a pseudo exception. It must
/// not be swallowed, so it is rethrown.
template <class Result, class Body>
SCALER_ISP_NO_NULL_SANITIZER Result CatchAll(Result fallback, Body &&body) {
    try {
        return std::forward<Body>(body)();
    }
#if defined(__GLIBC__) && defined(__GLIBCXX__)
    catch (abi::__forced_unwind &) {
        throw;
    }
#endif
    catch (...) {
        return fallback;
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
