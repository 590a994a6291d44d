#include "scaler_isp/common/Paths.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/LibraryDirectory.h"
#include "scaler_isp/common/PathResolution.h"

namespace {

/// Whether realpath leaves the unresolvable part of a path on every system. After any other error
/// glibc leaves nothing, but macOS a path that nobody named: one that is too long is truncated, and
/// so names another file.
bool LeavesPartialPath(int error) {
    return error == ENOENT || error == EACCES;
}

} // namespace

bool UsesFileAsDirectory(const std::string &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        return false;
    }
    if (!IsErrorOfPath(errno)) {
        throw CallFailure(errno);
    }
    return errno == ENOTDIR;
}

std::string ResolvePath(const std::string &path) {
    if (UsesFileAsDirectory(path)) {
        return {};
    }
    // The buffer matters: after a failure it holds the path that could not be resolved, which users
    // see in messages. The allocating form of realpath would give nothing.
    std::string buffer(PATH_MAX + 1, '\0');
    if (::realpath(path.c_str(), buffer.data()) == nullptr && !LeavesPartialPath(errno)) {
        if (!IsErrorOfPath(errno)) {
            throw CallFailure(errno);
        }
        return {};
    }
    buffer.resize(std::min(buffer.find('\0'), buffer.size()));
    return buffer;
}

std::string ResolveFile(const std::string &file, const std::string &directory) {
    return IsAbsolutePath(file) ? file : ResolvePath(directory + file);
}

bool CanBeOpened(const std::string &path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    ::close(descriptor);
    return true;
}

std::vector<std::string> ListNames(const std::string &directory, const std::string &ending) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(::opendir(directory.c_str()), &::closedir);
    if (listing == nullptr) {
        if (!IsErrorOfPath(errno)) {
            throw CallFailure(errno);
        }
        return names;
    }
    for (;;) {
        errno = 0; // the end of the listing and an error both give null
        const dirent *entry = ::readdir(listing.get());
        if (entry == nullptr) {
            break;
        }
        const std::string_view name = entry->d_name;
        if (name.size() > ending.size() && name.ends_with(ending)) {
            names.emplace_back(name);
        }
    }
    if (errno != 0) {
        throw CallFailure(errno);
    }
    return names;
}

CCpNxString GetCurrentProcessDir(void *address) {
    return CatchAll(CCpNxString(), [&] { return FindDirectoryOf(address).strName; });
}

CCpNxString GetParentDir(CCpNxString path) {
    if (!path.empty() && path.back() == L'/') {
        path.pop_back();
    }
    path.erase(path.rfind(L'/') + 1);
    return path;
}

bool IsAbsolutePath(const std::string &path) {
    return path.find(":\\") == 1 || path.find("://") == 1 || path.find('/') == 0;
}

std::string GetFileFullPath(const std::string &file, const std::string &directory) {
    return CatchAll(std::string(), [&] { return ResolveFile(file, directory); });
}

std::string GetAbsolutePath(const std::string &path) {
    return CatchAll(std::string(), [&] { return ResolvePath(path); });
}

int PathFileExist(const std::string &path) {
    return CanBeOpened(path) ? 1 : 0;
}

int PopupDlgToGetOpenFilePath(CCpNxString title, CCpNxString &path) {
    static_cast<void>(title);
    static_cast<void>(path);
    return 1;
}
