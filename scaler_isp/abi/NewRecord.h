#ifndef SCALER_ISP_ABI_NEW_RECORD_H
#define SCALER_ISP_ABI_NEW_RECORD_H

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/ZeroedMemory.h"

/// Command records of known bytes: the defaults of command_setting_fields.def, and 0 in padding and
/// in the target banks that the constructor leaves uninitialised. Hence no stale memory of the host
/// reaches a plug-in.

/// RETURNS null if there is no memory.
ZeroedPointer<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> NewCommandRecord();

/// The same in memory that the caller has. REQUIRES: every byte of the record is 0.
void StoreDefaultsInZeroedRecord(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &record);

/// Copies a record. REQUIRES: every byte of the bank entries beyond ulFwCount is 0, as in a record
/// that was new and then filled. RETURNS null if there is no memory.
ZeroedPointer<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>
CopyCommandRecord(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &record);

#endif
