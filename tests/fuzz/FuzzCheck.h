#ifndef SCALER_ISP_TESTS_FUZZ_FUZZ_CHECK_H
#define SCALER_ISP_TESTS_FUZZ_FUZZ_CHECK_H

#include <string>

/// Ends the process with a message, which is how a fuzzer notices. The message appears even while
/// standard error is closed to what the code under test prints.
[[noreturn]] void FailFuzzCheck(const char *file, int line, const char *condition,
                                const std::string &detail);

/// A condition that holds for every input. DETAIL is evaluated only if it does not.
#define FUZZ_CHECK(CONDITION, DETAIL)                                                              \
    do {                                                                                           \
        if (!(CONDITION)) {                                                                        \
            FailFuzzCheck(__FILE__, __LINE__, #CONDITION, DETAIL);                                 \
        }                                                                                          \
    } while (false)

#endif
