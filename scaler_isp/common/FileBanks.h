#ifndef SCALER_ISP_COMMON_FILE_BANKS_H
#define SCALER_ISP_COMMON_FILE_BANKS_H

#include <cstdint>
#include <string>

/// The position of the end of a file, which is its size.
/// PRINTS "File open fail! %s\n" with the path before it RETURNS false for a file that cannot be
/// opened.
/// \param position  UNITS: bytes; -1 if the file has no end to be found.
bool FindEndOfFile(const std::string &path, std::int64_t &position);

/// The 64 KiB banks of a firmware file of the command line, rounded up.
unsigned int BanksOfCommandFile(std::int64_t endPosition);

/// The banks of a file of any size. False, and `count` unchanged, if it cannot be opened; PRINTS as
/// FindEndOfFile.
bool CountBanksOfFile(const std::string &path, unsigned int &count);

#endif
