#ifndef SCALER_ISP_SIMULATOR_BUS_DEFAULT_EDID_H
#define SCALER_ISP_SIMULATOR_BUS_DEFAULT_EDID_H

#include <array>
#include <cstdint>

namespace virtual_scaler {

/// The EDID of a new device: a fictitious monitor of 1920x1080 at 60 Hz, an EDID 1.4 block and one
/// CTA-861 extension.
std::array<std::uint8_t, 256> DefaultEdid();

} // namespace virtual_scaler

#endif
