#include "LibraryPaths.h"

#include <initializer_list>
#include <string>
#include <system_error>

#if defined(__APPLE__)
#include <array>
#include <cstdint>
#include <mach-o/dyld.h>
#endif

namespace ispctl {
namespace {

namespace fs = std::filesystem;

fs::path ExecutableFolder() {
    return ExecutableFile().parent_path();
}

// Folders are relative to the executable's.
fs::path FirstExistingLibrary(std::initializer_list<const char *> folders) {
    const fs::path from = ExecutableFolder();
    const auto in = [&](const char *folder) {
        return (from / folder / ISPCTL_LIBRARY_NAME).lexically_normal();
    };
    for (const char *folder : folders) {
        std::error_code ignored;
        if (fs::exists(in(folder), ignored)) {
            return in(folder);
        }
    }
    return in(*folders.begin());
}

} // namespace

fs::path ExecutableFile() {
    std::error_code ignored;
#if defined(__APPLE__)
    std::array<char, 4096> buffer{};
    auto size = static_cast<std::uint32_t>(buffer.size());
    if (::_NSGetExecutablePath(buffer.data(), &size) != 0) {
        return {};
    }
    return fs::canonical(buffer.data(), ignored);
#else
    return fs::read_symlink("/proc/self/exe", ignored);
#endif
}

fs::path InstalledLibraryPath() {
    return FirstExistingLibrary({ISPCTL_LIBRARY_FOLDER, "../lib"});
}

fs::path VirtualLibrary() {
    // The second place is that of a build folder.
    return FirstExistingLibrary({ISPCTL_VIRTUAL_FOLDER, "../virtual"});
}

fs::path VirtualCommLibrary() {
    return VirtualLibrary().parent_path() / "libVirtualComm.dylib";
}

} // namespace ispctl
