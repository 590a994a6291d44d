#include "support/ProgramDirectory.h"

#if defined(__APPLE__)
#include <climits>
#include <cstdint>
#include <stdexcept>

#include <mach-o/dyld.h>
#endif

std::filesystem::path ProgramDirectory() {
#if defined(__APPLE__)
    char path[PATH_MAX];
    std::uint32_t size = sizeof path;
    if (_NSGetExecutablePath(path, &size) != 0) {
        throw std::runtime_error("the path of the program is too long");
    }
    return std::filesystem::canonical(path).parent_path();
#else
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
#endif
}
