#if defined(__APPLE__)

#include "scaler_isp/common/Platform.h"

#include <array>
#include <cerrno>
#include <copyfile.h>
#include <dlfcn.h>
#include <libproc.h>
#include <unistd.h>

bool PlatformImagePath(const void *address, std::string &path) {
    Dl_info info{};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return false;
    }
    path = info.dli_fname;
    return true;
}

std::string PlatformExecutablePath() {
    std::array<char, 4096> buffer{};
    const int length = ::proc_pidpath(::getpid(), buffer.data(), buffer.size());
    return length > 0 ? buffer.data() : "";
}

const char *PlatformWideCharsetFallback() {
    return nullptr;
}

bool PlatformPathsFallBackToUtf8() {
    return false;
}

bool PlatformAsciiLocaleNeedsByteConversion() {
    return false;
}

int PlatformCopyAttributes(int from, int to) {
    return ::fcopyfile(from, to, nullptr, COPYFILE_ACL | COPYFILE_XATTR) < 0 ? errno : 0;
}

#endif
