#ifndef SCALER_ISP_ABI_COMM_TYPES_H
#define SCALER_ISP_ABI_COMM_TYPES_H

/// \file
/// Types of the communication library that pass through this library unchanged. Their meaning is that
/// library's own; here only width and layout matter.

#include <stdint.h>

#include "scaler_isp/abi/Enumeration.h"

/// Communication channel, 1..19 on the command line (--comm); 0 when none was chosen.
SCALER_ISP_ENUM(STRUCT_ENUM_COMM_ID){COMM_ID_NONE = 0, COMM_ID_HUB = 6};

#endif
