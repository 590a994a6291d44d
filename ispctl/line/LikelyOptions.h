#ifndef ISPCTL_LINE_LIKELY_OPTIONS_H
#define ISPCTL_LINE_LIKELY_OPTIONS_H

#include <cstddef>
#include <string>
#include <vector>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// The library's options that an unknown or ambiguous argument most likely stands for, with their
/// dashes: near in spelling, preferably such as the rest of the line has a use for. Several are
/// equally likely. Empty if none is near enough.
/// \param index  of the argument in line.Given()
std::vector<std::string> LikelyOptions(const LineUnderCheck &line, std::size_t index);

/// The argument after an option that the library does not know, which was meant as its value; null
/// if there is none.
const GivenArgument *MeantValue(const LineUnderCheck &line, std::size_t index);

} // namespace ispctl

#endif
