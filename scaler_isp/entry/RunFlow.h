#ifndef SCALER_ISP_ENTRY_RUN_FLOW_H
#define SCALER_ISP_ENTRY_RUN_FLOW_H

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Carries out a judged command and reports it on the console.
/// PRINTS a green "Success" line, or a red "Fail! Error Code: 0x%X" line; nothing for a successful
/// action userdefinedinfo, which reports its information itself.
/// Neither record is changed. A null record gives 0xD69. The callbacks are those of Globals.h.
/// RETURNS a code of ResultCodes.h, or the plug-in's own; if the system fails, the code of the step
/// that failed. What a plug-in or a callback throws passes through to the caller (OperateScaler
/// turns it into -1).
SCALER_ISP_API int DoIsp(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                         STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, void *device);

/// The run without the report.
/// \param ispPath         path of the ISP plug-in below the library's folder
/// \param signVerifyName  file name of the sign/verify plug-in in the library's folder
// QUIRK Early_end_leaves_the_plugin_loaded: the ISP plug-in is freed after its action only; a run
// that ends before leaves it loaded, and the sign/verify plug-in is never unloaded.
SCALER_ISP_API int ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                                  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs,
                                  CCpNxString &ispPath, CCpNxString &signVerifyName, void *device);

#endif
