#ifndef SCALER_ISP_ENTRY_RUN_REPORT_H
#define SCALER_ISP_ENTRY_RUN_REPORT_H

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/common/LibraryDirectory.h"

/// DoIsp with the library's directory as the caller has already found it: a call must use one
/// directory throughout, even if a second search for it would fail.
int RunAndReport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                 STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, const LibraryDirectory &directory,
                 void *device);

#endif
