#include "device/MemoryFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {

MemoryFile::MemoryFile(std::string path, const char *name, std::uint32_t size)
    : m_path(std::move(path)), m_name(name), m_size(size),
      m_file(OpenRegular(m_path, O_RDWR | O_CREAT)) {
    if (!m_file.IsOpen()) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE,
                      Format("The %s file cannot be opened: %s: %s. Another device can be chosen "
                             "with SCALER_ISP_VIRTUAL_DEVICE.",
                             m_name, m_path.c_str(), ErrorText(errno))};
    }
    if (flock(m_file.Get(), LOCK_EX | LOCK_NB) != 0) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE,
                      Format("The %s is in use: %s", m_name, m_path.c_str())};
    }
}

void MemoryFile::RequireInside(std::uint64_t address, std::uint64_t count) const {
    if (address > m_size || count > m_size - address) {
        throw Failure{VIRTUAL_ISP_OUTSIDE,
                      Format("Outside the %s: 0x%llX bytes at 0x%llX, but it ends at 0x%X", m_name,
                             static_cast<unsigned long long>(count),
                             static_cast<unsigned long long>(address), m_size)};
    }
}

Bytes MemoryFile::Read(std::uint32_t address, std::uint32_t count) const {
    RequireInside(address, count);
    Bytes bytes(count, kErased);
    if (ReadUpTo(m_file.Get(), bytes.data(), count, address) < 0) {
        throw Failure{VIRTUAL_ISP_READ_FAILED, Format("The %s cannot be read: %s: %s", m_name,
                                                      m_path.c_str(), ErrorText(errno))};
    }
    return bytes;
}

void MemoryFile::Erase(std::uint32_t address, std::uint32_t count) {
    RequireInside(address, count);
    const std::uint64_t end = std::uint64_t{address} + count;
    const std::uint64_t fileBytes = FileBytes();
    if (fileBytes > end) {
        Fill(address, end);
    } else if (fileBytes > address && ftruncate(m_file.Get(), static_cast<off_t>(address)) != 0) {
        FailWriting(errno);
    }
}

void MemoryFile::Write(std::uint32_t address, const std::uint8_t *bytes, std::uint32_t count) {
    RequireInside(address, count);
    const std::uint64_t before = FileBytes();
    try {
        if (before < address) {
            Fill(before, address);
        }
        if (!WriteAllAt(m_file.Get(), bytes, count, address)) {
            FailWriting(errno);
        }
    } catch (const Failure &) {
        // Truncation allocates no space, so it works on a full disk.
        if (before <= address && ftruncate(m_file.Get(), static_cast<off_t>(before)) == 0) {
            throw;
        }
        Erase(address, count);
        throw;
    }
}

std::uint64_t MemoryFile::FileBytes() const {
    struct stat state {};
    if (fstat(m_file.Get(), &state) != 0) {
        throw Failure{VIRTUAL_ISP_READ_FAILED, Format("The %s cannot be read: %s: %s", m_name,
                                                      m_path.c_str(), ErrorText(errno))};
    }
    return static_cast<std::uint64_t>(state.st_size);
}

void MemoryFile::Fill(std::uint64_t address, std::uint64_t end) {
    const Bytes erased(static_cast<std::size_t>(std::min<std::uint64_t>(end - address, 65536)),
                       kErased);
    while (address < end) {
        const std::uint64_t count = std::min<std::uint64_t>(end - address, erased.size());
        if (!WriteAllAt(m_file.Get(), erased.data(), static_cast<std::size_t>(count), address)) {
            FailWriting(errno);
        }
        address += count;
    }
}

void MemoryFile::FailWriting(int reason) const {
    throw Failure{VIRTUAL_ISP_WRITE_FAILED, Format("The %s cannot be written: %s: %s", m_name,
                                                   m_path.c_str(), ErrorText(reason))};
}

} // namespace virtual_scaler
