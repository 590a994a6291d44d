#ifndef ISPCTL_LINE_CORRECT_LINE_H
#define ISPCTL_LINE_CORRECT_LINE_H

#include <string>
#include <vector>

#include "line/CheckLine.h"

namespace ispctl {

/// ARGS with everything corrected at once that has a correction.
struct CorrectedLine {
    std::vector<std::string> arguments; ///< empty: nothing has a correction
    /// Errors and fatal findings about these arguments: what nobody but their user can correct.
    std::vector<Finding> remaining;
};

/// \param findings  of CheckLine about these arguments
/// \param allowed   names of findings that stay as they are
CorrectedLine CorrectLine(const std::vector<std::string> &arguments,
                          const std::vector<Finding> &findings,
                          const std::vector<std::string> &allowed, const LineContext &context);

} // namespace ispctl

#endif
