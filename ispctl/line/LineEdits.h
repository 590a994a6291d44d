#ifndef ISPCTL_LINE_LINE_EDITS_H
#define ISPCTL_LINE_LINE_EDITS_H

#include <string>
#include <string_view>
#include <vector>

#include "line/GivenArguments.h"

namespace ispctl {

using ArgumentList = std::vector<std::string>;

/// ARGS with another value of this option.
ArgumentList WithValue(ArgumentList arguments, const GivenArgument &given, std::string_view value);

/// ARGS with this option under another name; its value stays where it is.
ArgumentList WithName(ArgumentList arguments, const GivenArgument &given, std::string_view typed);

/// ARGS without this argument, and without its value.
ArgumentList Without(ArgumentList arguments, const GivenArgument &given);

/// ARGS with more arguments before this one, or after it and its value.
ArgumentList WithBefore(ArgumentList arguments, const GivenArgument &given,
                        const ArgumentList &added);
ArgumentList WithAfter(ArgumentList arguments, const GivenArgument &given,
                       const ArgumentList &added);

} // namespace ispctl

#endif
