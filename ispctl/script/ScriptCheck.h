#ifndef ISPCTL_SCRIPT_SCRIPT_CHECK_H
#define ISPCTL_SCRIPT_SCRIPT_CHECK_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ispctl {

/// What can be said about a script without running it.
struct ScriptReport {
    std::vector<std::string> problems; ///< why it must not run, or cannot succeed; the first 1000
    std::vector<std::string> notes;    ///< what is allowed, and easily overlooked; the first 1000
    std::size_t problemCount = 0;      ///< all of them
    std::size_t records = 0;
    std::size_t outputBytes = 0; ///< room that its reads need
};

ScriptReport CheckScript(std::span<const std::uint8_t> script);

} // namespace ispctl

#endif
