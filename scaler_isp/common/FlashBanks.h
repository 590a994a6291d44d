#ifndef SCALER_ISP_COMMON_FLASH_BANKS_H
#define SCALER_ISP_COMMON_FLASH_BANKS_H

#include <string>

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// The number of 64 KiB flash banks that a file occupies, rounded up; an empty file occupies none.
/// PRINTS "File open fail! %s\n" with the path as given where the file cannot be opened.
/// \param count  UNITS: banks; untouched on failure.
/// RETURNS 1 for success, else 0.
SCALER_ISP_API int GetFwBankCount(CCpNxString path, unsigned int &count);

/// The same for a narrow path; prints nothing.
bool CountFlashBanks(const std::string &path, unsigned int &count);

#endif
