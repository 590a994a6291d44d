#include "scaler_isp/common/FileBytes.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/FileDescriptor.h"

namespace {

constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

/// The size of a regular file; 0 for any other type, which may be endless.
std::size_t RegularSize(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        throw CallFailure(errno);
    }
    return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
}

/// Reads up to `size` bytes, fewer only at the end of the file.
std::size_t ReadBlock(int descriptor, char *to, std::size_t size) {
    std::size_t used = 0;
    while (used < size) {
        const ssize_t got = ::read(descriptor, to + used, size - used);
        if (got < 0 && errno != EINTR) {
            throw CallFailure(errno);
        }
        if (got == 0) {
            break;
        }
        used += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    return used;
}

} // namespace

std::string ReadFileBytes(const std::string &path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) {
        throw CallFailure(errno);
    }
    const std::size_t size = RegularSize(file.Get());
    std::string bytes;
    std::size_t used = 0;
    std::size_t block =
        size != 0 ? size + 1 : kBlockBytes; // one more, to detect the end without another read
    while (true) {
        bytes.resize(used + block);
        const std::size_t got = ReadBlock(file.Get(), &bytes[used], block);
        // An endless device without newlines is one overlong line, at which readers of settings
        // stop anyway.
        const bool endless = size == 0 && std::memchr(&bytes[used], '\n', got) == nullptr;
        used += got;
        if (got < block || endless) {
            break;
        }
        block = kBlockBytes;
    }
    bytes.resize(used);
    if (size != 0 && used != RegularSize(file.Get())) {
        throw CallFailure(EIO); // the end came early, or another program is writing
    }
    return bytes;
}

int WriteFileBytes(int descriptor, const std::string &bytes) {
    std::size_t used = 0;
    while (used < bytes.size()) {
        const ssize_t written = ::write(descriptor, bytes.data() + used, bytes.size() - used);
        if (written == 0 || (written < 0 && errno != EINTR)) {
            return written == 0 ? EIO : errno;
        }
        used += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    return 0;
}
