#ifndef ISPCTL_DOCTOR_DEVICE_CHECK_H
#define ISPCTL_DOCTOR_DEVICE_CHECK_H

#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Whether the ISP plug-in is that of the virtual scaler, or a copy of it in a chip's directory.
bool IsVirtualScaler(const Places &places);

/// Reports whether the virtual scaler can write to the directory of its device, which it creates
/// if it is missing. REQUIRES: IsVirtualScaler(places).
void CheckVirtualDevice(const Places &places, Report &report);

} // namespace ispctl::doctor

#endif
