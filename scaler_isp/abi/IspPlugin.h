#ifndef SCALER_ISP_ABI_ISP_PLUGIN_H
#define SCALER_ISP_ABI_ISP_PLUGIN_H

/// \file
/// Exports of the ISP plug-in, PlugIn/libIsp.dylib in the library's directory; unmangled names. For
/// plug-in authors; hosts do not need this header. C99 and C++.
///
/// Every function runs on the caller's thread. The record is borrowed for the duration of the call
/// and must not be kept. An int result is 0 for success; any other value is the plug-in's error
/// code and reaches the host unchanged (avoid the codes in ResultCodes.h). The plug-in is not
/// loaded unless it exports every function marked "Required"; the others are optional, and the
/// action of a missing one ends with 6.

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/Export.h"

#ifdef __cplusplus
class CNxComm;
extern "C" {
#else
typedef struct CNxComm CNxComm;
#endif

/// Required. Called once per run, before any action, with the host's callbacks, each of which may
/// be null. hubDevice is null unless the host has set g_funcNxGetHubDev.
SCALER_ISP_API void SetUIFunction(ScalerIspProgressCallback progress,
                                  ScalerIspMessageCallback message,
                                  ScalerIspHubDeviceCallback hubDevice);

/// Required. Programs the banks of stMapFw: actions isp, ispuser, ispdiff, ispcopy, factoryisp, and
/// the boot firmware of a factory run. The map may be empty (ulFwCount 0).
SCALER_ISP_API int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Required. Reads the verify key of the next key generation from the chip.
/// \param key  SCALER_ISP_FLASH_KEY_BYTES zeroed bytes to fill. The setting is a copy of the
///             command with an empty map.
SCALER_ISP_API int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                                   unsigned char *key);

/// Required. Receives the communication object of a host tool. OperateScaler never calls it.
SCALER_ISP_API void SetCommInterface(CNxComm *comm);

/// Required. Action recordver: reads or records the firmware version.
SCALER_ISP_API int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Required. Action dumpflash: stDumpFlash.ulDumpLen bytes from ulDumpAddr into wszDumpFile.
SCALER_ISP_API int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Action userdefinedinfo: the plug-in reports the information; no "Success" line follows.
SCALER_ISP_API int GetUserDefinedInfoFromDDCCI(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Action edpisp: programs the eDP EEPROM.
SCALER_ISP_API int IspEeprom(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Action enterispmode.
SCALER_ISP_API int EnterISPModeExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Action resetmcu.
SCALER_ISP_API int ResetMCUExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

/// Action getscalertype: reports the scaler type as a message.
SCALER_ISP_API int GetScalerType(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting);

#ifdef __cplusplus
}
#endif

#endif
