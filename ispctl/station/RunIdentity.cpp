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

} // namespace ispctl
