#ifndef SCALER_ISP_ARGS_PROGRAMMING_ACTIONS_H
#define SCALER_ISP_ARGS_PROGRAMMING_ACTIONS_H

#include "scaler_isp/abi/CommandSetting.h"

/// Whether the action writes firmware files into the flash.
inline bool ProgramsFirmware(ENUM_CP_ISPTOOL_ACTION_TYPE action) {
    switch (action) {
    case ENUM_ACTION_ISP:
    case ENUM_ACTION_ISPUSER:
    case ENUM_ACTION_ISPDIFF:
    case ENUM_ACTION_ISPCOPY:
    case ENUM_ACTION_FACTORYISP:
        return true;
    default:
        return false;
    }
}

#endif
