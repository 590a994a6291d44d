#include "LibraryPaths.h"

#include <cstdlib>
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

using Candidates = std::vector<fs::path>;

// The directories are relative to that of the executable.
Candidates LibrariesIn(std::initializer_list<const char *> directories) {
    const fs::path from = ExecutableDirectory();
    Candidates candidates;
    for (const char *directory : directories) {
        candidates.push_back((from / directory / ISPCTL_LIBRARY_NAME).lexically_normal());
    }
    return candidates;
}

fs::path FirstExisting(const Candidates &candidates) {
    for (const fs::path &candidate : candidates) {
        std::error_code ignored;
        if (fs::exists(candidate, ignored)) {
            return candidate;
        }
    }
    return candidates.front();
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

std::vector<fs::path> InstalledLibraryCandidates() {
    return LibrariesIn({ISPCTL_LIBRARY_DIRECTORY, "../lib"});
}

std::vector<fs::path> VirtualLibraryCandidates() {
    // The second directory is that of a build tree.
    return LibrariesIn({ISPCTL_VIRTUAL_DIRECTORY, "../virtual"});
}

fs::path InstalledLibraryPath() {
    return FirstExisting(InstalledLibraryCandidates());
}

fs::path VirtualLibraryPath() {
    return FirstExisting(VirtualLibraryCandidates());
}

fs::path PagesDirectory() {
    return (ExecutableDirectory() / ISPCTL_PAGES_DIRECTORY).lexically_normal();
}

fs::path VirtualDeviceDirectory(const fs::path &libraryDirectory) {
    const char *chosen = std::getenv("SCALER_ISP_VIRTUAL_DEVICE"); // NOLINT(concurrency-mt-unsafe)
    return chosen != nullptr && *chosen != '\0' ? fs::absolute(chosen)
                                                : libraryDirectory / "VirtualScaler";
}

fs::path VirtualCommLibraryPath() {
    return VirtualLibraryPath().parent_path() / "libVirtualComm.dylib";
}

} // namespace ispctl
