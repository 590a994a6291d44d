#ifndef SCALER_ISP_ARGS_SETTING_FILE_PATH_H
#define SCALER_ISP_ARGS_SETTING_FILE_PATH_H

#include <string>

#include "scaler_isp/abi/CommandSetting.h"

/// Makes the name of a settings file a full path, relative names from the library's folder, and
/// stores it in the record's field.
// KEPT Shorter_setting_file_keeps_the_tail_of_the_longer: exactly the characters of the path are
// stored, without a terminator; after a longer path in the same field its tail remains.
void StoreSettingFile(std::string &settingFile, wchar_t (&field)[SCALER_ISP_PATH_CHARS]);

#endif
