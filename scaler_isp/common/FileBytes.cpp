#include "scaler_isp/common/FileBytes.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "scaler_isp/common/CallFailure.h"

namespace {

constexpr std::size_t kHeadBytes = std::size_t{4} * 1024;
constexpr std::size_t kBlockBytes = std::size_t{64} * 1024;

int OpenForReading(const std::string &path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw CallFailure(errno);
    }
    return descriptor;
}

/// The size of a regular file; 0 for any other type.
std::size_t RegularSize(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        throw CallFailure(errno);
    }
    return S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
}

} // namespace

FileReader::FileReader(const std::string &path)
    : m_file(OpenForReading(path)), m_size(RegularSize(m_file.Get())) {}

/// Appends up to `size` bytes, fewer only at the end of the file. RETURNS their number.
std::size_t FileReader::Read(std::size_t size) {
    const std::size_t before = m_bytes.size();
    std::size_t used = before;
    m_bytes.resize(before + size);
    while (used < m_bytes.size()) {
        const ssize_t got = ::read(m_file.Get(), &m_bytes[used], m_bytes.size() - used);
        if (got < 0 && errno != EINTR) {
            throw CallFailure(errno);
        }
        if (got == 0) {
            break;
        }
        used += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    m_bytes.resize(used);
    return used - before;
}

const std::string &FileReader::Head() {
    if (m_size > kHeadBytes && m_bytes.empty() && Read(kHeadBytes) < kHeadBytes) {
        throw CallFailure(EIO); // the end came early
    }
    return m_bytes;
}

std::string FileReader::All() {
    // One byte more than a regular file has, to detect the end without another read.
    std::size_t block = m_size != 0 ? m_size + 1 - m_bytes.size() : kBlockBytes;
    while (true) {
        const std::size_t used = m_bytes.size();
        const std::size_t got = Read(block);
        // An endless device without newlines is one overlong line, at which readers of settings
        // stop anyway.
        const bool endless = m_size == 0 && std::memchr(&m_bytes[used], '\n', got) == nullptr;
        if (got < block || endless) {
            break;
        }
        block = kBlockBytes;
    }
    if (m_size != 0 && m_bytes.size() != RegularSize(m_file.Get())) {
        throw CallFailure(EIO); // the end came early, or another program is writing
    }
    return std::move(m_bytes);
}

std::string ReadFileBytes(const std::string &path) {
    return FileReader(path).All();
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
