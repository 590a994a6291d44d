#ifndef ISPCTL_ARGUMENT_BORDER_H
#define ISPCTL_ARGUMENT_BORDER_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ispctl {

/// Cuts off the arguments that are not the command's own.
///
/// The command's own options come first. The first argument that is none of them, and everything
/// behind it, is foreign; a "--" at the border is dropped. So own options are written out in full
/// and never recognised behind the border. \param arguments  what follows the command's name; keeps
/// the own part RETURNS the foreign part, untouched.
std::vector<std::string> TakeForeign(const CLI::App &command, std::vector<std::string> &arguments);

} // namespace ispctl

#endif
