#ifndef SCALER_ISP_ABI_ZERO_UNINITIALIZED_BYTES_H
#define SCALER_ISP_ABI_ZERO_UNINITIALIZED_BYTES_H

#include "scaler_isp/abi/CommandSetting.h"

/// Zeroes what the constructor of a command record leaves as the memory held it: the target banks,
/// which it clears in part, and the padding. After it no stale data of the host can reach a plug-in
/// through the record or a copy of it. REQUIRES: a new record; the target banks of a filled one
/// would be lost.
void ZeroUninitializedBytes(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &record);

#endif
