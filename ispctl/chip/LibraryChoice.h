#ifndef ISPCTL_CHIP_LIBRARY_CHOICE_H
#define ISPCTL_CHIP_LIBRARY_CHOICE_H

#include <string>

namespace CLI {
class App;
}

namespace ispctl {

/// Adds the options that choose a library to a command: --lib, --chip and --virtual, of which one
/// may be given. A chip is a directory with its library, so --chip stores that library's path.
void AddLibraryChoice(CLI::App &command, std::string &library, bool &virtualScaler);

} // namespace ispctl

#endif
