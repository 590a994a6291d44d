#ifndef ISPCTL_LINE_FITTING_EXAMPLE_H
#define ISPCTL_LINE_FITTING_EXAMPLE_H

#include <string>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// ExampleOf this option, with a value that the rest of the line has what it needs for, if there is
/// one: such as a key scheme whose keys are given.
std::string FittingExample(const LineUnderCheck &line, const GivenArgument &given);

} // namespace ispctl

#endif
