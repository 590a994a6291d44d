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

fs::path ExecutableDirectory() {
    return ExecutableFile().parent_path();
}

// The directories are relative to that of the executable.
fs::path FirstExistingLibrary(std::initializer_list<const char *> directories) {
    const fs::path from = ExecutableDirectory();
    const auto in = [&](const char *directory) {
        return (from / directory / ISPCTL_LIBRARY_NAME).lexically_normal();
    };
    for (const char *directory : directories) {
        std::error_code ignored;
        if (fs::exists(in(directory), ignored)) {
            return in(directory);
        }
    }
    return in(*directories.begin());
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
    return FirstExistingLibrary({ISPCTL_LIBRARY_DIRECTORY, "../lib"});
}

fs::path VirtualLibraryPath() {
    // The second directory is that of a build tree.
    return FirstExistingLibrary({ISPCTL_VIRTUAL_DIRECTORY, "../virtual"});
}

fs::path VirtualCommLibraryPath() {
    return VirtualLibraryPath().parent_path() / "libVirtualComm.dylib";
}

} // namespace ispctl
