#ifndef SCALER_ISP_COMMON_FILE_BANKS_H
#define SCALER_ISP_COMMON_FILE_BANKS_H

#include <cstdint>
#include <string>

/// The position of the end of a file, which is its size.
/// PRINTS "File open fail! %s\n" with the path if the file cannot be opened.
/// RETURNS false in that case.
/// \param position  UNITS: bytes; -1 if the end cannot be found.
bool FindEndOfFile(const std::string &path, std::int64_t &position);

/// The number of 64 KiB banks of a firmware file of the command line, rounded up.
unsigned int BanksOfCommandFile(std::int64_t endPosition);

/// Counts the banks of a file of any size. False, with `count` unchanged, if it cannot be opened;
/// PRINTS as FindEndOfFile.
bool CountBanksOfFile(const std::string &path, unsigned int &count);

#endif
