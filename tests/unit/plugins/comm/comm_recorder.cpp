// A communication library that records its last call: a function for every row of the library's
// table, those that nobody looks up included. Without the standard library, so that closing unloads
// it.

#include <cstring>
#include <type_traits>

#include "CommRecord.h"
#include "scaler_isp/abi/CommTypes.h"

#define RECORDER_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

CommRecord g_record;
alignas(16) unsigned char g_result[16];

void Add(const void *bytes, unsigned count) {
    g_record.sizes[g_record.arguments++] = count;
    std::memcpy(g_record.bytes + g_record.byteCount, bytes, count);
    g_record.byteCount += count;
}

// A reference is recorded as the address it stands for.
template <class Parameter, class Value> void AddArgument(Value &value) {
    if constexpr (std::is_reference_v<Parameter>) {
        const void *address = &value;
        Add(&address, sizeof address);
    } else {
        Add(&value, sizeof value);
    }
}

template <class Function> struct Recorder;
template <class Result, class... Parameters> struct Recorder<Result(Parameters...)> {
    static Result Call(const char *name, Parameters... arguments) {
        const int calls = g_record.calls + 1;
        std::memset(&g_record, 0, sizeof g_record);
        g_record.calls = calls;
        g_record.name = name;
        (AddArgument<Parameters>(arguments), ...);
        if constexpr (!std::is_void_v<Result>) {
            Result result;
            std::memcpy(static_cast<void *>(&result), g_result, sizeof result);
            return result;
        }
    }
};

} // namespace

RECORDER_EXPORT CommRecord *CommRecorderRecord() {
    return &g_record;
}

RECORDER_EXPORT void *CommRecorderResult() {
    return g_result;
}

// A row's arguments in parentheses, with the name in front.
#define WITHOUT_PARENTHESES(...) __VA_OPT__(, ) __VA_ARGS__
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    RECORDER_EXPORT RESULT SYMBOL PARAMETERS {                                                     \
        return Recorder<RESULT PARAMETERS>::Call(#SYMBOL WITHOUT_PARENTHESES ARGUMENTS);           \
    }
#include "scaler_isp/plugins/comm_functions.def"

// The name of a method that goes to another function: it must not be called.
RECORDER_EXPORT void SetConfigFilePath(wchar_t *path) {
    Recorder<void(wchar_t *)>::Call("SetConfigFilePath", path);
}
