#ifndef SCALER_ISP_ARGS_ARGS_FW_SEARCH_H
#define SCALER_ISP_ARGS_ARGS_FW_SEARCH_H

#include <cstdint>
#include <string>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// The part of a version that a file name must contain. Any other value (IspUserDefined.txt may
/// hold a negative one) matches no file.
enum ENUM_FIND_BIN_MODE_USE_VER_MODE : std::int32_t {
    ENUM_FIND_BIN_WHOLE_VERSION = 0,
    ENUM_FIND_BIN_MAJOR_VERSION = 1
};

/// The settings in section "UserDefinedInfo" of IspUserDefined.txt; each key is the member's name
/// without its prefix.
struct STRUCT_CP_GET_USER_DEFINED_BIN_INFO {
    std::uint32_t ulRecordSIMode = 0;    ///< 0: strSIName is text; 1, 2: a list of character codes
    std::uint32_t ulRecordModelMode = 0; ///< the same for strModelName
    std::uint32_t ulRecordPanelMode = 0; ///< the same for strPanelName
    std::uint32_t ulRecordVersionMode = 0; ///< 0: strVersion is text; 1, 2: a list of numbers
    std::string strSIName;
    std::string strModelName;
    std::string strPanelName;
    std::string strVersion;
    std::string strCapabilityInfo; ///< precedes the version in a file name
    std::uint32_t bIgnoreSIName = 0;
    std::uint32_t bIgnoreModelName = 0;
    std::uint32_t bIgnorePanelName = 0;
    std::uint32_t bIgnoreVersionName = 0;
    std::uint32_t bIgnoreCapabilityInfo = 0;
    ENUM_FIND_BIN_MODE_USE_VER_MODE enumFindBinUseVerMode = ENUM_FIND_BIN_WHOLE_VERSION;
};

/// Appends the names in a directory that end with `ext` and are longer than it, subdirectories
/// included, in the order of the listing. A directory that cannot be opened adds nothing.
SCALER_ISP_API void FindFile(const std::string &dir, std::vector<std::string> &names,
                             std::string ext);

/// Stores the path of IspSetting.ini in the library's directory, NUL-terminated.
/// \param size  UNITS: capacity of buf in wide characters, terminator included; if the path does
///              not fit, buf becomes the empty string.
SCALER_ISP_API void GetDefaultSettingFilePathName(wchar_t *buf, unsigned int size);

#endif
