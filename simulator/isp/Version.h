#ifndef SCALER_ISP_SIMULATOR_ISP_VERSION_H
#define SCALER_ISP_SIMULATOR_ISP_VERSION_H

#include <string>

#include "isp/Device.h"
#include "isp/Plan.h"

namespace virtual_scaler {

/// \file
/// Firmware versions. With version location "flash" and lengths given, the version lies at
/// ulVerAddr: major, then sub; enumRecordVerMode 0 shows them as text, 1 as decimal and 2 as
/// hexadecimal bytes. Everywhere else it is the text in the description's version area.

/// What the device answers; while the version area is erased, the description's version.
/// RETURNS "" where the location is "flash" and erased.
std::string DeviceVersion(const Device &device, const Setting &setting);

/// What the firmware of the plan would answer; "" when it does not cover the place or is erased
/// there.
std::string PlannedVersion(const Device &device, const Setting &setting, const Plan &plan);

std::string EepromVersion(const Device &device);

/// Action recordver: reports the version as a message, by version location. Throws Failure.
void ReportVersion(const Device &device, const Setting &setting);

} // namespace virtual_scaler

#endif
