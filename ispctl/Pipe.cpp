#include "Pipe.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace ispctl {

int Descriptor::Close() {
    const bool hasFailed = m_number >= 0 && ::close(std::exchange(m_number, -1)) != 0;
    return hasFailed ? errno : 0;
}

Pipe Pipe::Make() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot create a pipe");
    }
    Pipe made{Descriptor(ends[0]), Descriptor(ends[1])};
    SetInherited(ends[0], false);
    SetInherited(ends[1], false);
    return made;
}

void SetNonBlocking(const Descriptor &descriptor) {
    ::fcntl(descriptor.Number(), F_SETFL, ::fcntl(descriptor.Number(), F_GETFL) | O_NONBLOCK);
}

void SetInherited(int descriptor, bool inherited) {
    ::fcntl(descriptor, F_SETFD, inherited ? 0 : FD_CLOEXEC);
}

long ReadSome(int descriptor, char *buffer, std::size_t size) noexcept {
    ssize_t length = 0;
    do {
        length = ::read(descriptor, buffer, size);
    } while (length < 0 && errno == EINTR);
    return length;
}

long ReadAvailable(int descriptor, char *buffer, std::size_t size) {
    const long length = ReadSome(descriptor, buffer, size);
    if (length < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot read from the library's process");
    }
    return length;
}

bool ReadExactly(int descriptor, char *buffer, std::size_t size) noexcept {
    while (size > 0) {
        const long length = ReadSome(descriptor, buffer, size);
        if (length <= 0) {
            return false;
        }
        buffer += length;
        size -= static_cast<std::size_t>(length);
    }
    return true;
}

} // namespace ispctl
