#ifndef SCALER_ISP_SIMULATOR_ISP_PROGRAMMER_H
#define SCALER_ISP_SIMULATOR_ISP_PROGRAMMER_H

#include "isp/Device.h"
#include "isp/Plan.h"

namespace virtual_scaler {

/// Runs the actions isp, ispuser, ispdiff, ispcopy and factoryisp; any other action programs like
/// isp.
void ProgramFlash(Device &device, const Setting &setting);

/// Runs the action edpisp: programs the EEPROM or reports its version.
void RunEepromAction(Device &device, const Setting &setting);

} // namespace virtual_scaler

#endif
