#ifndef SCALER_ISP_SIMULATOR_BUS_VIRTUAL_BUS_H
#define SCALER_ISP_SIMULATOR_BUS_VIRTUAL_BUS_H

#include "bus/ChannelFunctions.h"
#include "bus/DeviceFunctions.h"
#include "bus/I2cFunctions.h"
#include "bus/RegisterFunctions.h"

namespace virtual_scaler {

/// Every exported function of both libraries under its own name. The exports are generated from the
/// library's tables, so a row without a method here does not compile.
class VirtualBus : public ChannelFunctions,
                   public RegisterFunctions,
                   public I2cFunctions,
                   public DeviceFunctions {
  public:
    explicit VirtualBus(BusSession &session)
        : ChannelFunctions(session), RegisterFunctions(session), I2cFunctions(session),
          DeviceFunctions(session) {}
};

} // namespace virtual_scaler

#endif
