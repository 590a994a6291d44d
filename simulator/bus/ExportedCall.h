#ifndef SCALER_ISP_SIMULATOR_BUS_EXPORTED_CALL_H
#define SCALER_ISP_SIMULATOR_BUS_EXPORTED_CALL_H

#include <type_traits>

#include "bus/BusStatus.h"
#include "bus/JournalLine.h"
#include "bus/VirtualBus.h"
#include "common/ExceptionBarrier.h"
#include "device/Failure.h"

namespace virtual_scaler {

/// RETURNS the device's directory, for both libraries the same.
std::string BusDirectory();

/// Rejects null pointers, except for data of length 0, so that a host's mistake becomes a status
/// and not a crash.
class PointerCheck {
  public:
    explicit PointerCheck(const char *names) : m_names(names) {}
    template <class... Arguments> void Require(Arguments... arguments) const {
        const bool anyNull = (IsNull(arguments) || ... || false);
        const bool nothing =
            m_names.find("length, data") != std::string_view::npos && LengthIsZero(arguments...);
        if (anyNull && !nothing) {
            throw Failure{VIRTUAL_BUS_BAD_ARGUMENT, "A null pointer"};
        }
    }

  private:
    template <class Value> static bool IsNull(Value value) {
        if constexpr (std::is_pointer_v<Value>) {
            return value == nullptr;
        } else {
            return false;
        }
    }
    // The length is the argument before the first pointer.
    static bool LengthIsZero() {
        return false;
    }
    template <class First, class... Rest> static bool LengthIsZero(First first, Rest... rest) {
        if constexpr (std::is_integral_v<First> && sizeof...(Rest) > 0) {
            return NextIsPointer(rest...) ? first == 0 : LengthIsZero(rest...);
        }
        return false;
    }
    template <class Next, class... Rest> static bool NextIsPointer(Next, Rest...) {
        return std::is_pointer_v<Next>;
    }

    std::string_view m_names;
};

/// Runs one exported function on the bus and writes the call and its result to the journal.
///
/// A method without a result returns status 0, or the code of the Failure that it throws; one whose
/// result is not a status returns 0 on failure.
/// \param act       calls a method of VirtualBus
/// \param describe  adds the arguments to a JournalLine
template <class Result, class Act, class Describe>
Result RunExport(const char *function, const char *names, Act &&act, Describe &&describe) {
    using Returned = std::invoke_result_t<Act, VirtualBus &>;
    constexpr bool kHasResult = !std::is_void_v<Returned>;
    std::conditional_t<kHasResult, Returned, int> returned{};
    const int status = CatchAll<int>(VIRTUAL_ISP_INTERNAL, [&] {
        const std::string directory = BusDirectory();
        Failure failure{0, {}};
        try {
            BusSession session(directory);
            VirtualBus bus(session);
            if constexpr (kHasResult) {
                returned = act(bus);
            } else {
                act(bus);
            }
            session.Save();
        } catch (const Failure &thrown) {
            failure = thrown;
        }
        JournalLine line(function, names, failure.code == 0);
        describe(line);
        std::string text = line.Line();
        if constexpr (std::is_integral_v<Returned> || std::is_enum_v<Returned>) {
            text += Format(" -> 0x%X", failure.code == 0 ? static_cast<unsigned>(returned)
                                                         : static_cast<unsigned>(failure.code));
        } else if (std::is_same_v<Result, unsigned int> || failure.code != 0) {
            text += Format(" -> 0x%X", static_cast<unsigned>(failure.code));
        }
        if (!failure.text.empty()) {
            text += ' ' + Quoted(failure.text);
        }
        AppendToJournal(directory, text);
        return failure.code;
    });
    if constexpr (std::is_void_v<Result>) {
        return;
    } else if constexpr (std::is_same_v<Result, unsigned int>) {
        if constexpr (kHasResult) {
            return status == 0 ? returned : static_cast<unsigned>(status);
        } else {
            return static_cast<unsigned>(status);
        }
    } else {
        return status == 0 ? returned : Result{};
    }
}

} // namespace virtual_scaler

/// The export of one function: the method of VirtualBus of the same name. ARGUMENTS in parentheses.
#define VIRTUAL_BUS_EXPORT(RESULT, NAME, PARAMETERS, ARGUMENTS)                                    \
    extern "C" __attribute__((visibility("default"))) RESULT NAME PARAMETERS;                      \
    RESULT NAME PARAMETERS {                                                                       \
        return virtual_scaler::RunExport<RESULT>(                                                  \
            #NAME, #ARGUMENTS,                                                                     \
            [&](virtual_scaler::VirtualBus &bus) {                                                 \
                virtual_scaler::PointerCheck(#ARGUMENTS).Require ARGUMENTS;                        \
                return bus.NAME ARGUMENTS;                                                         \
            },                                                                                     \
            [&](virtual_scaler::JournalLine &line) { line.AddArguments ARGUMENTS; });              \
    }

#endif
