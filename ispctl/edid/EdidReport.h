#ifndef ISPCTL_EDID_EDID_REPORT_H
#define ISPCTL_EDID_EDID_REPORT_H

#include "ExitStatus.h"
#include "edid/EdidInput.h"

namespace ispctl::edid {

/// One input and what was found in it.
struct Report {
    std::string file; ///< as the user named it
    Input input;
    Findings problems; ///< those of the input, or else those of its bytes
    Findings remarks;

    /// Whether the base block can be shown.
    bool HasFacts() const {
        return HasBaseBlock(input.bytes);
    }
    /// Whether the input itself could be read.
    bool IsReadable() const;
    /// 0, 1 with problems, 8 if the input is unreadable or too large.
    ExitStatus Status() const;
    /// Why there are no facts, in one line that names the file.
    std::string Reason() const;
};

/// Examines what was read.
Report MakeReport(std::string file, Input input);

/// RETURNS the report of an input that cannot be read.
Report MakeUnreadable(std::string file, Finding problem);

} // namespace ispctl::edid

#endif
