#ifndef SCALER_ISP_SETTINGS_UI_SETTING_H
#define SCALER_ISP_SETTINGS_UI_SETTING_H

#include <cstdint>

#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"

/// Which panels a graphical host shows. Each key in the settings file has the name of its switch.
struct STRUCT_CP_ISP_UI_SETTING {
    std::uint32_t bShowEraseUI = 0;
    std::uint32_t bShowFWInfoUI = 0;
    std::uint32_t bShowFWVersion = 0;
    std::uint32_t bShowMergeFW = 0;
    std::uint32_t bShowDualBankFW = 0;
    std::uint32_t bShowResetMCU = 0;
    std::uint32_t bShowEnterIspMode = 0;
    std::uint32_t bShowDumpFlash = 0;
    wchar_t wszSettingFile[SCALER_ISP_PATH_CHARS] = {}; ///< the file to load; no terminator at 260

    /// Loads the eight switches; a missing file, section or key gives 0. If a lack of memory or an
    /// I/O error prevents reading, all switches stay unchanged.
    SCALER_ISP_API void LoadUISetting();
};

#endif
