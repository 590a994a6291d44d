#ifndef SCALER_ISP_SIMULATOR_DEVICE_MEMORY_FILE_H
#define SCALER_ISP_SIMULATOR_DEVICE_MEMORY_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/Files.h"

namespace virtual_scaler {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kErased = 0xFF;

/// A flash or EEPROM stored in a file, byte for byte at the same address, so that the file can be
/// compared with a dump. Addresses after the end of the file are erased: a new device is an empty
/// file, which grows only up to the last byte programmed. A gap is filled with 0xFF, never left as
/// a hole, because a hole reads as 0.
///
/// Only one MemoryFile per path can be open at a time, in all processes.
class MemoryFile {
  public:
    /// Opens the file and creates it if needed. Throws Failure.
    /// \param name  for messages: "flash" or "EEPROM"
    MemoryFile(std::string path, const char *name, std::uint32_t size);

    std::uint32_t Size() const {
        return m_size;
    }
    /// Throws Failure VIRTUAL_ISP_OUTSIDE unless the range is inside.
    void RequireInside(std::uint64_t address, std::uint64_t count) const;

    Bytes Read(std::uint32_t address, std::uint32_t count) const;
    void Erase(std::uint32_t address, std::uint32_t count);
    /// REQUIRES: the range is erased. Throws Failure if it cannot be written; the range is then
    /// still erased and everything else unchanged.
    void Write(std::uint32_t address, const std::uint8_t *bytes, std::uint32_t count);

  private:
    std::uint64_t FileBytes() const;
    void Fill(std::uint64_t address, std::uint64_t end);
    [[noreturn]] void FailWriting(int reason) const;

    std::string m_path;
    const char *m_name;
    std::uint32_t m_size;
    Descriptor m_file;
};

} // namespace virtual_scaler

#endif
