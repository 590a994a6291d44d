#ifndef SCALER_ISP_COMMON_FLASH_BANKS_H
#define SCALER_ISP_COMMON_FLASH_BANKS_H

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// The number of 64 KiB flash banks that a file occupies, rounded up; an empty file occupies none.
/// Files of any size are counted correctly, unlike by the function of the same name in
/// CCpIspArgsParse.
/// PRINTS "File open fail! %s\n" with the path as given if the file cannot be opened.
/// \param count  UNITS: banks; unchanged on failure.
/// RETURNS 1 on success, else 0.
SCALER_ISP_API int GetFwBankCount(CCpNxString path, unsigned int &count);

#endif
