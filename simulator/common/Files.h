#ifndef SCALER_ISP_SIMULATOR_COMMON_FILES_H
#define SCALER_ISP_SIMULATOR_COMMON_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace virtual_scaler {

/// Owns an open file descriptor.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : m_number(number) {}
    ~Descriptor();
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    int Get() const {
        return m_number;
    }
    bool IsOpen() const {
        return m_number >= 0;
    }

  private:
    int m_number;
};

/// Instead of an errno: what was opened is a pipe, a device or a socket. No errno is negative.
constexpr int kNotRegularFile = -1;
/// RETURNS the text for errno, or for kNotRegularFile.
const char *ErrorText(int error);

/// Opens a file of the device, never anything that could wait or be endless: errno is then
/// kNotRegularFile. A new file is created with `flags`. RETURNS -1 with errno set.
int OpenRegular(const std::string &path, int flags);

/// RETURNS the directory of the device, ending in "/": the one that SCALER_ISP_VIRTUAL_DEVICE
/// names, otherwise "VirtualScaler" in the directory `levels` above the file of this plug-in.
std::string DeviceDirectory(int levels);

/// Creates a directory and its parents. RETURNS whether it exists; if not, errno is set.
bool MakeDirectory(const std::string &directory);

/// Writes all bytes at the current position. RETURNS false with errno set.
bool WriteAll(int descriptor, const void *bytes, std::size_t count);
/// As WriteAll, but at offset.
bool WriteAllAt(int descriptor, const void *bytes, std::size_t count, std::uint64_t offset);
/// RETURNS the number of bytes read, less than `count` only at the end of the file; -1 with errno.
std::int64_t ReadUpTo(int descriptor, void *bytes, std::size_t count, std::uint64_t offset);

/// Reads a complete file of at most 64 MiB. RETURNS false with errno set.
bool ReadText(const std::string &path, std::string &text);
/// Replaces a file; removes it if it cannot be written completely, so that no partial file is
/// mistaken for a result. A device is written, too; nothing waits. RETURNS false with errno set.
bool ReplaceFile(const std::string &path, const void *bytes, std::size_t count);

/// Appends a line to journal.txt in the device's directory, which is created if needed. One write,
/// so that lines of several processes do not interleave. RETURNS whether the line was written.
bool AppendToJournal(const std::string &directory, const std::string &line);

} // namespace virtual_scaler

#endif
