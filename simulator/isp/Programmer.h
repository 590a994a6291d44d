#ifndef SCALER_ISP_SIMULATOR_ISP_PROGRAMMER_H
#define SCALER_ISP_SIMULATOR_ISP_PROGRAMMER_H

#include "isp/Device.h"
#include "isp/Plan.h"

namespace virtual_scaler {

/// Actions isp, ispuser, ispdiff, ispcopy and factoryisp; any other action programs like isp.
void ProgramFlash(Device &device, const Setting &setting);

/// Action edpisp: programs the EEPROM or reports its version.
void ServeEeprom(Device &device, const Setting &setting);

} // namespace virtual_scaler

#endif
