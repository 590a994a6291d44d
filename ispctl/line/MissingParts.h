#ifndef ISPCTL_LINE_MISSING_PARTS_H
#define ISPCTL_LINE_MISSING_PARTS_H

#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/args/OptionNeeds.h"

namespace ispctl {

/// Something that a line lacks.
struct MissingPart {
    std::string words;   ///< "--dsmode 1", "a firmware file"
    std::string example; ///< "--dsmode 1", "--fw /srv/fw/monitor.bin"

    bool operator==(const MissingPart &) const = default;
};

/// Parts that must be added together.
using Alternative = std::vector<MissingPart>;

enum class Advice {
    Sound,    ///< nothing that the line contradicts, and nothing that skips a verification
    Anything, ///< another value of an option, too, and what skips a verification
};

/// What can be added to a line so that an expression of the option table holds for its option
/// `self`: any one alternative will do. One empty alternative: the expression holds. None: no
/// addition helps.
std::vector<Alternative> MissingParts(std::string_view expression, ScalerIspFacts::GivenLine line,
                                      Advice advice);

} // namespace ispctl

#endif
