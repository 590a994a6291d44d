#if defined(__linux__)

#include "scaler_isp/common/Platform.h"

#include <array>
#include <dlfcn.h>
#include <unistd.h>

namespace {

/// The working directory when the library was loaded, in memory that needs no allocation: nothing
/// may fail while the loader runs this.
class LoadDirectory {
  public:
    LoadDirectory() {
        if (::getcwd(m_path.data(), m_path.size()) == nullptr) {
            m_path[0] = '\0';
        }
    }
    /// Empty if it could not be found.
    const char *Path() const {
        return m_path.data();
    }

  private:
    std::array<char, 4096> m_path{};
};

// The loader reports a library under the name it was opened by. A relative one is only right in the
// working directory of that moment, which is the one in which this initialiser runs.
const LoadDirectory g_loadDirectory;

} // namespace

bool PlatformImagePath(const void *address, std::string &path) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return false;
    }
    path = info.dli_fname;
    if (path.empty() || path.front() == '/') {
        return true;
    }
    while (path.compare(0, 2, "./") == 0) {
        path.erase(0, 2);
    }
    const std::string directory = g_loadDirectory.Path();
    path.insert(0, directory + "/");
    return !directory.empty(); // else it would be looked for in whatever directory is current now
}

std::string PlatformExecutablePath() {
    std::array<char, 4096> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    return length > 0 ? std::string(buffer.data(), static_cast<std::size_t>(length)) : "";
}

const char *PlatformWideCharsetFallback() {
    // UTF-32LE is a loadable module that small containers lack; this one is built into glibc.
    return "WCHAR_T";
}

bool PlatformPathsFallBackToUtf8() {
    return true;
}

bool PlatformAsciiLocaleNeedsByteConversion() {
    return true;
}

#endif
