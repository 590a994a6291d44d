#ifndef SCALER_ISP_COMMON_FILE_BYTES_H
#define SCALER_ISP_COMMON_FILE_BYTES_H

#include <cstddef>
#include <string>

#include "scaler_isp/common/FileDescriptor.h"

/// A file of any type that is read from its start, only as far as its user needs. All members throw
/// CallFailure if the system fails.
class FileReader {
  public:
    explicit FileReader(const std::string &path);

    /// The first 4 KiB of a longer regular file; nothing of any other file, which may be a pipe
    /// whose writer expects to be read to its end.
    const std::string &Head();

    /// All bytes; of an endless device only a part. REQUIRES: called last.
    std::string All();

  private:
    std::size_t Read(std::size_t size);

    FileDescriptor m_file;
    std::size_t m_size; ///< of a regular file; 0 for any other type, which may be endless
    std::string m_bytes;
};

/// All bytes of a file, as FileReader reads them.
std::string ReadFileBytes(const std::string &path);

/// Writes at the current position. RETURNS 0, or errno if not all bytes were written.
int WriteFileBytes(int descriptor, const std::string &bytes);

#endif
