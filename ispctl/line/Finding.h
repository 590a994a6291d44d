#ifndef ISPCTL_LINE_FINDING_H
#define ISPCTL_LINE_FINDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl {

enum class FindingClass {
    Warning, ///< reported; the run continues
    Error,   ///< the library would accept it, and its user would regret it
    Fatal,   ///< the library refuses the line
};

/// Something about a command line that its user should know. Name and class are a row of
/// findings.def.
struct Finding {
    std::string_view name; ///< stable, such as "unknown-option"
    FindingClass severity = FindingClass::Error;
    std::string message;    ///< one sentence without a full stop
    std::string suggestion; ///< what to do instead; may be empty
    std::string option;     ///< as the user typed it, such as "--bank"; may be empty
    std::string value;      ///< of that option; may be empty
    /// What to underline: an argument's index in ARGS, and bytes within it. Nothing for a finding
    /// about the complete line.
    std::optional<std::size_t> argument;
    std::size_t offset = 0;
    std::size_t length = 0;
    /// What causes this finding, as typed: with that corrected, this one is gone. Empty: nothing
    /// else.
    std::string followsFrom;
    /// ARGS with this finding corrected; empty if nobody can know what was meant.
    std::vector<std::string> corrected;
};

/// "warning", "error" or "fatal".
std::string_view NameOf(FindingClass severity);

} // namespace ispctl

#endif
