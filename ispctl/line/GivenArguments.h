#ifndef ISPCTL_LINE_GIVEN_ARGUMENTS_H
#define ISPCTL_LINE_GIVEN_ARGUMENTS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {

/// One argument of a command line as the library's option engine reads it.
struct GivenArgument {
    enum class Kind {
        Option,        ///< known; `option` is set
        Unknown,       ///< looks like an option, but there is none
        Ambiguous,     ///< an abbreviation of several options
        MissingValue,  ///< known, takes a value, and is the last argument
        UnwantedValue, ///< "--name=value" of an option without a value
        NonOption,     ///< no option and no value: the library prints and ignores it
    };
    Kind kind = Kind::NonOption;
    const ScalerIspFacts::OptionFacts *option = nullptr;
    std::string typed; ///< as typed up to "=": "--bank", "-isp"; a NonOption as it is
    std::optional<std::string> value; ///< of an option that takes one
    std::size_t position = 0;         ///< index in ARGS
    std::size_t valuePosition = 0;    ///< index in ARGS of the argument that has the value
    bool abbreviated = false;
};

/// Reads ARGS by the rules of the library's option engine: names may be abbreviated, a value
/// follows its option or "=", everything after "--" is not an option.
std::vector<GivenArgument> ReadGivenArguments(const std::vector<std::string> &arguments);

} // namespace ispctl

#endif
