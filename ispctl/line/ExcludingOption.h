#ifndef ISPCTL_LINE_EXCLUDING_OPTION_H
#define ISPCTL_LINE_EXCLUDING_OPTION_H

#include <cstddef>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// The option of the line that excludes this one, or null if only several do together.
const GivenArgument *ExcludingOption(const LineUnderCheck &line, std::size_t index);

} // namespace ispctl

#endif
