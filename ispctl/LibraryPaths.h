#ifndef ISPCTL_LIBRARY_PATHS_H
#define ISPCTL_LIBRARY_PATHS_H

#include <filesystem>

namespace ispctl {

/// The file of this program, to be started once more.
std::filesystem::path ExecutableFile();

/// The libraries that belong to this console are found from where its own file lies, so that an
/// installation can be moved. The first place that has the file wins; where none has it, the first
/// place is the result, for the message.
std::filesystem::path InstalledLibraryPath();

/// The link to the library that has the virtual scaler's plug-ins beside it.
std::filesystem::path VirtualLibrary();

/// The communication library of the virtual bus, beside that link.
std::filesystem::path VirtualCommLibrary();

} // namespace ispctl

#endif
