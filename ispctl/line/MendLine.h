#ifndef ISPCTL_LINE_MEND_LINE_H
#define ISPCTL_LINE_MEND_LINE_H

#include <string>
#include <vector>

#include "line/CheckLine.h"

namespace ispctl {

/// ARGS with everything mended at once that has a correction.
struct MendedLine {
    std::vector<std::string> arguments; ///< empty: nothing has a correction
    /// Errors and fatal findings about these arguments: what nobody but their user can mend.
    std::vector<Finding> remaining;
};

/// \param findings  of CheckLine about these arguments
/// \param allowed   names of findings that stay as they are
MendedLine MendLine(const std::vector<std::string> &arguments, const std::vector<Finding> &findings,
                    const std::vector<std::string> &allowed, const LineContext &context);

} // namespace ispctl

#endif
