// A communication library whose functions only count their calls.

#include "scaler_isp/abi/CommTypes.h"

extern "C" __attribute__((visibility("default"))) unsigned long g_calls;
unsigned long g_calls = 0;

#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    extern "C" __attribute__((visibility("default"))) RESULT SYMBOL PARAMETERS {                   \
        static_cast<void>(Ignore ARGUMENTS);                                                       \
        ++g_calls;                                                                                 \
        return None<RESULT>();                                                                     \
    }

namespace {

struct Ignore {
    template <class... Types> explicit Ignore(Types &&...) {}
};

template <class Result> Result None() {
    return Result();
}

} // namespace

#include "scaler_isp/plugins/comm_functions.def"
