#ifndef SCALER_ISP_SIMULATOR_COMMON_FILES_H
#define SCALER_ISP_SIMULATOR_COMMON_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace virtual_scaler {

/// An open file descriptor, closed at the end.
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

/// Folder of the device, ending in "/": the one that SCALER_ISP_VIRTUAL_DEVICE names, else
/// "VirtualScaler" in the folder `levels` above the file of this plug-in.
std::string DeviceFolder(int levels);

/// Makes a folder and those above it. RETURNS whether it is there; if not, errno says why.
bool MakeFolder(const std::string &folder);

/// All or nothing, at the current position. RETURNS false with errno set.
bool WriteAll(int descriptor, const void *bytes, std::size_t count);
/// The same at a position of its own.
bool WriteAllAt(int descriptor, const void *bytes, std::size_t count, std::uint64_t offset);
/// RETURNS the number of bytes read, less than `count` only at the end of the file; -1 with errno.
std::int64_t ReadUpTo(int descriptor, void *bytes, std::size_t count, std::uint64_t offset);

/// The whole of a small text file. RETURNS false with errno set.
bool ReadText(const std::string &path, std::string &text);
/// Replaces a file. What cannot be written whole is removed again. RETURNS false with errno set.
bool ReplaceFile(const std::string &path, const void *bytes, std::size_t count);

/// Adds one line to journal.txt in the device's folder, which is made if needed, with one write, so
/// that lines of several processes do not mix. RETURNS whether the line was written.
bool AppendToJournal(const std::string &folder, const std::string &line);

} // namespace virtual_scaler

#endif
