#ifndef SCALER_ISP_ABI_ZERO_UNINITIALIZED_BYTES_H
#define SCALER_ISP_ABI_ZERO_UNINITIALIZED_BYTES_H

#include "scaler_isp/abi/CommandSetting.h"

/// Zeroes what the constructor of a command record leaves uninitialised, the padding and most
/// target banks, so that no stale memory of the host reaches a plug-in through the record or a
/// copy. REQUIRES: a new record, because the target banks of a filled one would be lost.
void ZeroUninitializedBytes(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &record);

#endif
