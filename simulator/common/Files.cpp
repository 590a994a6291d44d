#include "common/Files.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace virtual_scaler {
namespace {

// An address inside this plug-in; hidden, so that the symbol of another binary cannot replace it.
const char kAnchor = 0;

constexpr mode_t kFileMode = 0644;
constexpr std::size_t kMaxText = 64 * 1024 * 1024; ///< UNITS: bytes

std::string ParentDirectory(const std::string &path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string OwnFile() {
    Dl_info info{};
    if (dladdr(&kAnchor, &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    return info.dli_fname;
}

bool IsDirectory(const std::string &path) {
    struct stat state {};
    return stat(path.c_str(), &state) == 0 && S_ISDIR(state.st_mode);
}

bool IsRegular(int descriptor) {
    struct stat state {};
    return fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode);
}

enum class Accept { RegularFiles, Devices };

int Open(const std::string &path, int flags, Accept accept) {
    // Without O_NONBLOCK a named pipe waits for somebody at its other end; for a regular file it
    // has no meaning.
    const int number = open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kFileMode);
    if (number < 0) {
        errno = errno == ENXIO ? kNotRegularFile : errno; // a pipe without reader, a socket
        return -1;
    }
    struct stat state {};
    const bool known = fstat(number, &state) == 0;
    if (known &&
        (S_ISREG(state.st_mode) || (accept == Accept::Devices && S_ISCHR(state.st_mode)))) {
        return number;
    }
    const int error = !known ? errno : S_ISDIR(state.st_mode) ? EISDIR : kNotRegularFile;
    close(number);
    errno = error;
    return -1;
}

} // namespace

Descriptor::~Descriptor() {
    if (m_number >= 0) {
        close(m_number);
    }
}

const char *ErrorText(int error) {
    return error == kNotRegularFile ? "it is not a regular file" : std::strerror(error);
}

int OpenRegular(const std::string &path, int flags) {
    return Open(path, flags, Accept::RegularFiles);
}

std::string DeviceDirectory(int levels) {
    const char *chosen = std::getenv("SCALER_ISP_VIRTUAL_DEVICE");
    if (chosen != nullptr && *chosen != '\0') {
        std::string directory = chosen;
        return directory.back() == '/' ? directory : directory + '/';
    }
    std::string directory = OwnFile();
    for (int i = 0; i < levels; ++i) {
        directory = ParentDirectory(directory);
    }
    return (directory == "/" ? directory : directory + '/') + "VirtualScaler/";
}

bool MakeDirectory(const std::string &directory) {
    for (std::size_t end = directory.find('/', 1); end != std::string::npos;
         end = directory.find('/', end + 1)) {
        // Errors of parent directories are ignored: mkdir may fail for an existing one.
        mkdir(directory.substr(0, end).c_str(), 0755);
    }
    const int reason = mkdir(directory.c_str(), 0755) == 0 ? 0 : errno;
    const bool there = IsDirectory(directory);
    errno = reason;
    return there;
}

bool WriteAll(int descriptor, const void *bytes, std::size_t count) {
    const char *next = static_cast<const char *>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

bool WriteAllAt(int descriptor, const void *bytes, std::size_t count, std::uint64_t offset) {
    const char *next = static_cast<const char *>(bytes);
    while (count > 0) {
        const ssize_t written = pwrite(descriptor, next, count, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
        offset += static_cast<std::uint64_t>(written);
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

std::int64_t ReadUpTo(int descriptor, void *bytes, std::size_t count, std::uint64_t offset) {
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = pread(descriptor, static_cast<char *>(bytes) + done, count - done,
                                  static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return -1;
        }
        if (got == 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

bool ReadText(const std::string &path, std::string &text) {
    const Descriptor file(OpenRegular(path, O_RDONLY));
    if (!file.IsOpen()) {
        return false;
    }
    text.clear();
    char piece[4096];
    for (;;) {
        if (text.size() > kMaxText) {
            errno = EFBIG;
            return false;
        }
        const std::int64_t got = ReadUpTo(file.Get(), piece, sizeof piece, text.size());
        if (got < 0) {
            return false;
        }
        text.append(piece, static_cast<std::size_t>(got));
        if (got < static_cast<std::int64_t>(sizeof piece)) {
            return true;
        }
    }
}

bool ReplaceFile(const std::string &path, const void *bytes, std::size_t count) {
    const Descriptor file(Open(path, O_WRONLY | O_CREAT | O_TRUNC, Accept::Devices));
    if (!file.IsOpen()) {
        return false;
    }
    if (!WriteAll(file.Get(), bytes, count)) {
        const int reason = errno;
        if (IsRegular(file.Get())) {
            unlink(path.c_str());
        }
        errno = reason;
        return false;
    }
    return true;
}

bool AppendToJournal(const std::string &directory, const std::string &line) {
    if (!MakeDirectory(directory)) {
        return false;
    }
    const std::string path = directory + "journal.txt";
    const Descriptor file(Open(path, O_WRONLY | O_CREAT | O_APPEND, Accept::Devices));
    const std::string terminated = line + '\n';
    return file.IsOpen() && WriteAll(file.Get(), terminated.data(), terminated.size());
}

} // namespace virtual_scaler
