#ifndef ISPCTL_PARSER_HINT_H
#define ISPCTL_PARSER_HINT_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ispctl {

/// For arguments that the option parser rejects: the first option or subcommand that does not
/// exist, and the nearest one that does, as a question. Empty if all exist, or if no option is
/// near.
std::string NearestArgument(const CLI::App &app, const std::vector<std::string> &arguments);

} // namespace ispctl

#endif
