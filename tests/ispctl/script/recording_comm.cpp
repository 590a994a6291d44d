// A communication library that writes every call down on standard error, "comm WriteReg 10 20" in
// hexadecimal. Reads deliver A1, A2, A3 ... The variable RECORDING_COMM_FAILS names a function that
// ends with status 9, or that of RECORDING_COMM_STATUS; RECORDING_COMM_EXITS one that ends the
// process with status 0, RECORDING_COMM_ABORTS one that ends it with a signal. What
// RECORDING_COMM_PRINTS holds is printed to standard output at each call.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <unistd.h>

#include "scaler_isp/abi/CommTypes.h"

namespace {

unsigned char g_next = 0xA1;

/// The arguments of one call.
class Arguments {
  public:
    template <class... Types> explicit Arguments(Types... arguments) {
        (Add(arguments), ...);
    }

    std::string text;
    unsigned char *out = nullptr;
    unsigned short length = 0; ///< the last argument of this type

  private:
    void AddNumber(unsigned long long number) {
        char digits[20];
        std::snprintf(digits, sizeof digits, " %llX", number);
        text += digits;
    }
    void Add(unsigned char number) {
        AddNumber(number);
    }
    void Add(unsigned short number) {
        length = number;
        AddNumber(number);
    }
    void Add(unsigned int number) {
        AddNumber(number);
    }
    void Add(STRUCT_ENUM_INC_TYPE type) {
        AddNumber(static_cast<unsigned int>(type));
    }
    void Add(STRUCT_ENUM_COMM_ID id) {
        AddNumber(static_cast<unsigned int>(id));
    }
    void Add(unsigned char *bytes) {
        out = bytes;
    }
    template <class Other> void Add(Other &) {
        text += " ...";
    }
};

int Call(const std::string &name, const Arguments &arguments) {
    std::string text = "comm " + name + arguments.text;
    const bool reads = name.find("Read") != std::string::npos;
    const bool hasLength = name.find("Regs") != std::string::npos || name.starts_with("I2C");
    const int count = arguments.out == nullptr ? 0 : hasLength ? arguments.length : 1;
    for (int i = 0; i < count; ++i) {
        if (reads) {
            arguments.out[i] = g_next++;
        } else {
            char byte[8];
            std::snprintf(byte, sizeof byte, " %02X", arguments.out[i]);
            text += byte;
        }
    }
    std::fprintf(stderr, "%s\n", text.c_str());
    if (const char *prints = std::getenv("RECORDING_COMM_PRINTS")) {
        std::printf("%s\n", prints);
        std::fflush(stdout);
    }
    const char *exits = std::getenv("RECORDING_COMM_EXITS");
    if (exits != nullptr && name == exits) {
        ::_exit(0);
    }
    const char *aborts = std::getenv("RECORDING_COMM_ABORTS");
    if (aborts != nullptr && name == aborts) {
        std::abort();
    }
    const char *fails = std::getenv("RECORDING_COMM_FAILS");
    const char *status = std::getenv("RECORDING_COMM_STATUS");
    return fails == nullptr || name != fails ? 0 : status != nullptr ? std::atoi(status) : 9;
}

/// The status where a result can hold one.
template <class Result> Result As(int status) {
    if constexpr (std::is_integral_v<Result> || std::is_enum_v<Result>) {
        return static_cast<Result>(status);
    } else {
        return Result();
    }
}

} // namespace

#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    extern "C" __attribute__((visibility("default"))) RESULT SYMBOL PARAMETERS {                   \
        return As<RESULT>(Call(#SYMBOL, Arguments ARGUMENTS));                                     \
    }
#include "scaler_isp/plugins/comm_functions.def"
