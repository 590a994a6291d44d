#ifndef SCALER_ISP_COMMON_FILE_BYTES_H
#define SCALER_ISP_COMMON_FILE_BYTES_H

#include <string>

/// Reads all bytes of a file of any type; of an endless device only a part. Throws CallFailure if
/// the file cannot be opened or read to its end.
std::string ReadFileBytes(const std::string &path);

/// Writes at the current position. RETURNS 0, or errno if not all bytes were written.
int WriteFileBytes(int descriptor, const std::string &bytes);

#endif
