#ifndef ISPCTL_LIBRARY_PATHS_H
#define ISPCTL_LIBRARY_PATHS_H

#include <filesystem>
#include <vector>

namespace ispctl {

/// The file of this program, from which the library's process is started.
std::filesystem::path ExecutableFile();

/// The installed library. All libraries are located relative to the file of this program, so that
/// an installation can be moved. The first directory that contains the file wins; if none does, the
/// path in the first one is returned, for the error message.
std::filesystem::path InstalledLibraryPath();

/// The symbolic link to the library in the directory of the virtual scaler's plug-ins.
std::filesystem::path VirtualLibraryPath();

/// Where both are looked for, in this order.
std::vector<std::filesystem::path> InstalledLibraryCandidates();
std::vector<std::filesystem::path> VirtualLibraryCandidates();

/// The directory of the pages that messages name, such as options.md; a build tree has none.
std::filesystem::path PagesDirectory();

/// Where the virtual scaler keeps its device: what SCALER_ISP_VIRTUAL_DEVICE says, or a directory
/// in that of its library.
std::filesystem::path VirtualDeviceDirectory(const std::filesystem::path &libraryDirectory);

/// The communication library of the virtual bus, in the same directory.
std::filesystem::path VirtualCommLibraryPath();

} // namespace ispctl

#endif
