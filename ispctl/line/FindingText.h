#ifndef ISPCTL_LINE_FINDING_TEXT_H
#define ISPCTL_LINE_FINDING_TEXT_H

#include <cstddef>
#include <string>
#include <vector>

#include "VisibleText.h"
#include "line/CorrectLine.h"

namespace ispctl {

/// How findings are shown.
struct FindingLook {
    std::string command = "ispctl run"; ///< stands before the arguments of a line to copy
    std::size_t width = 80;             ///< UNITS: columns of the terminal
    Charset charset = Charset::Utf8;
};

/// A finding as it is shown: class, message and name; the line as a shell needs it, cut around the
/// word that it is about to the width, and that word underlined; the suggestion. Of what follows
/// from another finding only the message and that finding.
std::string FindingText(const Finding &finding, const std::vector<std::string> &arguments,
                        const FindingLook &look);

/// The line to copy; if something remains to be corrected, with what that is. Empty if nothing has
/// a correction.
std::string CorrectedText(const CorrectedLine &corrected, const FindingLook &look);

/// All findings and the corrected line, with an empty line between.
std::string FindingsText(const std::vector<Finding> &findings, const CorrectedLine &corrected,
                         const std::vector<std::string> &arguments, const FindingLook &look);

} // namespace ispctl

#endif
