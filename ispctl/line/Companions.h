#ifndef ISPCTL_LINE_COMPANIONS_H
#define ISPCTL_LINE_COMPANIONS_H

#include <cstddef>
#include <string>
#include <string_view>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// The options of which any one, added to the line, makes the expression hold for the option at
/// index: "--dsmode 1 or --dsmode 3"; empty if no single option does, or if none is missing.
std::string MissingCompanion(const LineUnderCheck &line, std::size_t index,
                             std::string_view expression);

/// The option of the line that excludes this one, or null if only several do together.
const GivenArgument *ExcludingOption(const LineUnderCheck &line, std::size_t index);

} // namespace ispctl

#endif
