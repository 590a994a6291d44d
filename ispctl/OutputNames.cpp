#include "OutputNames.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace ispctl {
namespace {

bool IsSameFile(const std::string &name, const std::string &other) {
    std::error_code ignored;
    return name == other || std::filesystem::equivalent(name, other, ignored);
}

} // namespace

std::string FindTakenOutput(const std::vector<std::string> &outputs,
                            const std::vector<std::string> &arguments) {
    std::vector<std::string> taken;
    for (const std::string &argument : arguments) {
        taken.push_back(argument);
        taken.push_back(argument.substr(argument.find('=') + 1));
    }
    for (const std::string &name : outputs) {
        if (name.empty()) {
            continue;
        }
        if (std::any_of(taken.begin(), taken.end(),
                        [&](const std::string &other) { return IsSameFile(name, other); })) {
            return name;
        }
        taken.push_back(name);
    }
    return "";
}

} // namespace ispctl
