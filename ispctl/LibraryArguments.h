#ifndef ISPCTL_LIBRARY_ARGUMENTS_H
#define ISPCTL_LIBRARY_ARGUMENTS_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ispctl {

/// Cuts off the arguments that belong to the library.
///
/// The command's own options come first. The first argument that is not one of them, and everything
/// after it, belongs to the library; a "--" at that point is removed. So own options are written in
/// full and never recognised after it.
/// \param arguments  what follows the command's name; keeps the own part
/// RETURNS the library's part, unchanged.
std::vector<std::string> SplitOffLibraryArguments(const CLI::App &command,
                                                  std::vector<std::string> &arguments);

} // namespace ispctl

#endif
