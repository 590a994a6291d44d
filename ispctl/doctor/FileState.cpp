#include "doctor/FileState.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

#include "Pipe.h"

namespace ispctl::doctor {
namespace {

std::string WordsOfMode(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "a regular file";
    case S_IFDIR:
        return "a directory";
    case S_IFIFO:
        return "a FIFO";
    case S_IFSOCK:
        return "a socket";
    default:
        return "a device";
    }
}

} // namespace

FileState StateOf(const std::filesystem::path &path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        const int error = errno;
        struct stat link {};
        if (error == ENOENT && ::lstat(path.c_str(), &link) == 0) {
            return {FileState::Kind::Unreachable, "the symbolic link leads nowhere"};
        }
        return {error == ENOENT ? FileState::Kind::Missing : FileState::Kind::Unreachable,
                std::strerror(error)};
    }
    const auto kind = S_ISREG(status.st_mode)   ? FileState::Kind::Regular
                      : S_ISDIR(status.st_mode) ? FileState::Kind::Directory
                                                : FileState::Kind::Special;
    return {kind, WordsOfMode(status.st_mode)};
}

std::optional<std::string> ReadBeginning(const std::filesystem::path &path, std::size_t limit,
                                         std::string &error) {
    // The name may lead to a FIFO by now: opening one would block without O_NONBLOCK.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0) {
        error = std::strerror(errno);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = "it is " + WordsOfMode(status.st_mode);
        return std::nullopt;
    }
    std::string bytes;
    std::array<char, 65536> buffer{};
    while (bytes.size() < limit) {
        const long count =
            ReadSome(file.Number(), buffer.data(), std::min(buffer.size(), limit - bytes.size()));
        if (count < 0) {
            error = std::strerror(errno);
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return bytes;
}

} // namespace ispctl::doctor
