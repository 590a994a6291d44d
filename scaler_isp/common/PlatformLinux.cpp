#if defined(__linux__)

#include "scaler_isp/common/Platform.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

/// The working directory at the time the library was loaded. Needs no allocation, because nothing
/// may fail while the loader runs this.
class LoadDirectory {
  public:
    LoadDirectory() {
        if (::getcwd(m_path.data(), m_path.size()) == nullptr) {
            m_path[0] = '\0';
        }
    }
    /// Empty if it could not be determined.
    const char *Path() const {
        return m_path.data();
    }

  private:
    std::array<char, 4096> m_path{};
};

// The loader reports a library by the name with which it was opened. A relative name is valid only
// in the working directory of that moment, in which this initialiser runs.
const LoadDirectory g_loadDirectory;

/// Lists the names of the extended attributes, each terminated by a NUL; none if the file system
/// has none. RETURNS 0, or errno.
int AttributeNames(int file, std::string &names) {
    const ssize_t size = ::flistxattr(file, nullptr, 0);
    if (size <= 0) {
        return size == 0 || errno == ENOTSUP ? 0 : errno;
    }
    names.resize(static_cast<std::size_t>(size));
    return ::flistxattr(file, names.data(), names.size()) == size ? 0 : EIO;
}

/// RETURNS 0, or errno.
int AttributeValue(int file, const char *name, std::string &value) {
    const ssize_t size = ::fgetxattr(file, name, nullptr, 0);
    if (size < 0) {
        return errno;
    }
    value.resize(static_cast<std::size_t>(size));
    return ::fgetxattr(file, name, value.data(), value.size()) == size ? 0 : EIO;
}

/// Calls `action` for every name until it returns an error number. RETURNS 0, or that number.
template <class Action> int ForEachName(const std::string &names, Action action) {
    int error = 0;
    for (const char *name = names.data(); error == 0 && name < names.data() + names.size();
         name += std::strlen(name) + 1) {
        error = action(name);
    }
    return error;
}

int CopyAttribute(int from, int to, const char *name) {
    std::string value;
    std::string present;
    if (const int error = AttributeValue(from, name, value); error != 0) {
        return error;
    }
    // An attribute that the system has already set often must not be set again.
    if (AttributeValue(to, name, present) == 0 && present == value) {
        return 0;
    }
    return ::fsetxattr(to, name, value.data(), value.size(), 0) != 0 ? errno : 0;
}

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
    return !directory.empty(); // else the path would depend on the current working directory
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

// The access control list is one of the extended attributes. The new file may have inherited one
// from its directory that the old file lacks, so it is removed first.
int PlatformCopyAttributes(int from, int to) {
    std::string names;
    std::string inherited;
    int error = AttributeNames(from, names);
    error = error != 0 ? error : AttributeNames(to, inherited);
    if (error != 0) {
        return error;
    }
    error = ForEachName(inherited, [&](const char *name) {
        std::string unused;
        const bool wanted = AttributeValue(from, name, unused) == 0;
        return wanted || ::fremovexattr(to, name) == 0 ? 0 : errno;
    });
    return error != 0 ? error : ForEachName(names, [&](const char *name) {
        return CopyAttribute(from, to, name);
    });
}

#endif
