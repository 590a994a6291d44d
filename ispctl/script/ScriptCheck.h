#ifndef ISPCTL_SCRIPT_SCRIPT_CHECK_H
#define ISPCTL_SCRIPT_SCRIPT_CHECK_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ispctl {

/// The result of checking a script without running it.
struct ScriptReport {
    std::vector<std::string> problems; ///< why it must not run, or cannot succeed; the first 1000
    std::vector<std::string> notes;    ///< valid but easily overlooked; the first 1000
    std::size_t problemCount = 0;      ///< including those not in problems
    std::size_t records = 0;
    std::size_t outputBytes = 0; ///< size of the buffer that its reads need
};

/// Checks all records, because the runner itself does not check that a record is complete.
ScriptReport CheckScript(std::span<const std::uint8_t> script);

} // namespace ispctl

#endif
