#ifndef SCALER_ISP_SIMULATOR_DEVICE_FAILURE_H
#define SCALER_ISP_SIMULATOR_DEVICE_FAILURE_H

#include <string>

#include "device/ResultCodes.h"

namespace virtual_scaler {

/// Thrown to end a call: code becomes the result, text the last message. Never leaves the plug-in.
struct Failure {
    int code;
    std::string text;
};

} // namespace virtual_scaler

#endif
