#ifndef SCALER_ISP_ENTRY_RUN_FLOW_H
#define SCALER_ISP_ENTRY_RUN_FLOW_H

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Executes a validated command and prints the result to standard output.
/// PRINTS a green "Success" line, or a red "Fail! Error Code: 0x%X" line; nothing for a successful
/// action userdefinedinfo, whose information the plug-in reports. Neither record is changed. A null
/// record gives 0xD69. The callbacks are those of Globals.h.
/// RETURNS a code of ResultCodes.h or of the plug-in; if the system fails, the code of the step
/// that failed. Exceptions of a plug-in or a callback reach the caller (OperateScaler turns them
/// into -1).
SCALER_ISP_API int DoIsp(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                         STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, void *device);

/// Executes a validated command without printing the result.
/// \param ispPath         path of the ISP plug-in, relative to the library's directory
/// \param signVerifyName  file name of the sign/verify plug-in in the library's directory
// QUIRK Early_end_leaves_the_plugin_loaded: the ISP plug-in is unloaded only after its action; a
// run that ends earlier leaves it loaded. The sign/verify plug-in is never unloaded.
SCALER_ISP_API int ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                                  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs,
                                  CCpNxString &ispPath, CCpNxString &signVerifyName, void *device);

#endif
