#ifndef ISPCTL_LOG_LOG_ENTRY_H
#define ISPCTL_LOG_LOG_ENTRY_H

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ispctl {

/// What a log says of one run.
struct LogEntry {
    std::string run; ///< id
    std::string time;
    bool passed = false;
    std::optional<int> status; ///< of ispctl; a log of events does not have it
    std::optional<int> code;   ///< nothing: the library returned none
    std::string source;        ///< "library", "plug-in" or "ispctl"; may be empty
    std::string stage;         ///< how far the run was; a log of events does not have it
    std::string meaning;
    std::vector<std::pair<std::string, std::string>> tags;
};

/// A line that cannot be understood.
struct BrokenLine {
    std::string file;
    std::size_t line = 0; ///< counted from 1
    std::string reason;
};

} // namespace ispctl

#endif
