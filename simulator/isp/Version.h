#ifndef SCALER_ISP_SIMULATOR_ISP_VERSION_H
#define SCALER_ISP_SIMULATOR_ISP_VERSION_H

#include <string>

#include "isp/Device.h"
#include "isp/Plan.h"

namespace virtual_scaler {

/// \file
/// Firmware versions. With version location "flash" and lengths given, the version is at ulVerAddr:
/// major, then sub; enumRecordVerMode 0 shows them as text, 1 as decimal and 2 as hexadecimal
/// bytes. Otherwise it is the text in the description's version area.

/// RETURNS the version of the device; the description's if the version area is erased; "" if the
/// location is "flash" and erased.
std::string DeviceVersion(const Device &device, const Setting &setting);

/// RETURNS the version in the planned firmware; "" if the plan does not cover its location or it is
/// erased.
std::string PlannedVersion(const Device &device, const Setting &setting, const Plan &plan);

/// RETURNS the version in the EEPROM; "" if it is erased.
std::string EepromVersion(const Device &device);

/// Action recordver: reports the version as a message, by version location. Throws Failure.
void ReportVersion(const Device &device, const Setting &setting);

} // namespace virtual_scaler

#endif
