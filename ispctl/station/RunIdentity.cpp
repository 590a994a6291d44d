#include "station/RunIdentity.h"

#include <cstdint>
#include <fmt/format.h>
#include <random>

namespace ispctl {

std::string NewRunId() {
    std::random_device random;
    const std::uint64_t high = random();
    return fmt::format("{:016x}", (high << 32U) | (random() & 0xFFFFFFFFU));
}

std::vector<std::string> WithRunOption(std::vector<std::string> arguments, const char *option,
                                       const std::string &value) {
    arguments.insert(arguments.begin() + 1, {option, value}); // after "run"
    return arguments;
}

void TakeRunOptions(std::vector<std::string> &arguments, StationOptions &options) {
    constexpr std::size_t kNeeded = 3; // "run", option, value
    while (options.runId.empty() && arguments.size() >= kNeeded &&
           (arguments[1] == kRunIdOption || arguments[1] == kPrivateDirectoryOption)) {
        (arguments[1] == kRunIdOption ? options.runId : options.privateDirectory) = arguments[2];
        arguments.erase(arguments.begin() + 1, arguments.begin() + kNeeded);
    }
}

} // namespace ispctl
