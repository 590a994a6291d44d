#ifndef SCALER_ISP_ABI_COMM_TYPES_H
#define SCALER_ISP_ABI_COMM_TYPES_H

/// \file
/// Types of the communication library that pass through this library unchanged. That library
/// defines their meaning; here only width and layout matter. Only values that users of this library
/// need have names; any other 32-bit value passes as well.

#include <stdint.h>

#include "scaler_isp/abi/Enumeration.h"

/// Communication channel, 1..19 on the command line (--comm); 0 when none was chosen.
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_COMM_ID);
enum SCALER_ISP_ENUM_VALUES(STRUCT_ENUM_COMM_ID) { COMM_ID_NONE = 0, COMM_ID_HUB = 6 };

/// Address mode of a transfer of several bytes.
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_INC_TYPE);
enum SCALER_ISP_ENUM_VALUES(STRUCT_ENUM_INC_TYPE) { INC_TYPE_0 = 0, INC_TYPE_1 = 1 };

SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_DEBUG_TYPE);
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_SYS_DEVICE_CMD_TYPE);
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_IIC_MASTER_SPEED);
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_CPU_TYPE);
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_SPECIAL_COMM_TYPE);
SCALER_ISP_ENUM_TYPE(STRUCT_ENUM_NEW_VEXMIRAUSB_MODE);

/// Passed by value; the communication library defines its contents. Declared as large as two
/// registers: on x86_64 and arm64 a record of up to 16 bytes is passed in up to two integer
/// registers, so a smaller one passes unchanged.
typedef struct STRUCT_AUXMODE_STRUCT {
    uint64_t ullWords[2];
} STRUCT_AUXMODE_STRUCT;

/// Passed by value. 8 bytes.
typedef struct STRUCT_WAITING_STRUCT {
    uint32_t ulWords[2];
} STRUCT_WAITING_STRUCT;

/// Passed by pointer only, so its contents need not be known here.
typedef struct STRUCT_COMM_INFO STRUCT_COMM_INFO;

#endif
