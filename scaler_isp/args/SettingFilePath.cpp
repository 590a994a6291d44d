#include "scaler_isp/args/SettingFilePath.h"

#include "scaler_isp/common/CCpNxString.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/common/LibraryAnchor.h"
#include "scaler_isp/common/Paths.h"

void StoreSettingFile(std::string &settingFile, wchar_t (&field)[SCALER_ISP_PATH_CHARS]) {
    CCpNxString folder = GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL);
    settingFile = GetFileFullPath(settingFile, folder.GetStringBufferBaseOnOS());
    const std::wstring wide = CCpTransform().ConvertStringToWString(settingFile);
    wide.copy(field, SCALER_ISP_PATH_CHARS);
}
