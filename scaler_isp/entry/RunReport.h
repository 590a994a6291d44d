#ifndef SCALER_ISP_ENTRY_RUN_REPORT_H
#define SCALER_ISP_ENTRY_RUN_REPORT_H

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/common/LibraryDirectory.h"

/// DoIsp with the library's directory as the call has found it: everything in one call must be in
/// the same directory, even if a second search for it fails.
int RunAndReport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                 STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, const LibraryDirectory &directory,
                 void *device);

#endif
