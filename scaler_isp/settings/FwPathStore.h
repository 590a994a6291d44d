#ifndef SCALER_ISP_SETTINGS_FW_PATH_STORE_H
#define SCALER_ISP_SETTINGS_FW_PATH_STORE_H

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Splits a firmware file into 64 KiB banks and writes them to section "ISP_Fw" of a settings file:
/// fwFileCount, and for bank i of the file fw<i>_TargetBank = startBank + i, fw<i>_FileBank = i and
/// fw<i>_Path = fwPath.
/// All keys are written at once; see ProfileStore.h for how a file is replaced.
/// PRINTS "File open fail! %s\n" if the firmware cannot be opened, in which case nothing is
/// written; "Open file error \n" once per key if the settings file cannot be opened for writing.
SCALER_ISP_API void SaveFwPathFromFile(CCpNxString fwPath, CCpNxString iniPath,
                                       unsigned int startBank);

#endif
