#ifndef ISPCTL_LIBRARY_ARGUMENTS_H
#define ISPCTL_LIBRARY_ARGUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ispctl {

/// Splits off the arguments that belong to the library.
///
/// The command's options come first. The first argument that is not one of them, and everything
/// after it, belongs to the library; a "--" at that point is removed. The option parser cannot do
/// this, because it looks for the command's options up to the end of the line. Options of the
/// command must be unabbreviated.
/// \param arguments  those after the command's name; keeps those of the command
/// RETURNS the library's arguments, unchanged.
std::vector<std::string> SplitOffLibraryArguments(const CLI::App &command,
                                                  std::vector<std::string> &arguments);

/// How many of the library's first arguments are options of the command, misspelt or after a
/// misspelt one: nobody meant them for the library.
std::size_t CountMisplacedOptions(const CLI::App &command,
                                  const std::vector<std::string> &libraryArguments);

} // namespace ispctl

#endif
