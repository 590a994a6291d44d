#if defined(__linux__)

#include "scaler_isp/common/Platform.h"

#include <array>
#include <dlfcn.h>
#include <unistd.h>

namespace {

std::string WorkingDirectory() {
    std::array<char, 4096> buffer{};
    return ::getcwd(buffer.data(), buffer.size()) != nullptr ? buffer.data() : "";
}

// The loader reports a library under the name it was opened by. A relative one is only right in the
// working directory of that moment, which is the one in which this initialiser runs.
const std::string g_loadDirectory = WorkingDirectory();

} // namespace

bool PlatformImagePath(const void *address, std::string &path) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return false;
    }
    path = info.dli_fname;
    if (!path.empty() && path.front() != '/' && !g_loadDirectory.empty()) {
        while (path.compare(0, 2, "./") == 0) {
            path.erase(0, 2);
        }
        path.insert(0, g_loadDirectory + "/");
    }
    return true;
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
