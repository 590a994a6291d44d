#ifndef SCALER_ISP_COMMON_FILE_BYTES_H
#define SCALER_ISP_COMMON_FILE_BYTES_H

#include <string>

/// All bytes of a file; no type of file is refused. Of a device without end only a part is read.
/// Throws CallFailure if the file cannot be opened or not be read to its end.
std::string ReadFileBytes(const std::string &path);

/// Writes from the current position on. RETURNS 0, or errno if not all bytes were written.
int WriteFileBytes(int descriptor, const std::string &bytes);

#endif
