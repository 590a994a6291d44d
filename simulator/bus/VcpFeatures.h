#ifndef SCALER_ISP_SIMULATOR_BUS_VCP_FEATURES_H
#define SCALER_ISP_SIMULATOR_BUS_VCP_FEATURES_H

#include <cstdint>

namespace virtual_scaler {

/// One VCP feature of the virtual monitor, after MCCS 2.2.
struct VcpFeature {
    std::uint8_t code;
    const char *name;           ///< its key in registers.txt
    std::uint16_t maximum;      ///< largest value
    std::uint16_t defaultValue; ///< value of a new device
    bool writable;
};

// 0x04 (restore factory defaults) resets the writable ones.
constexpr VcpFeature kVcpFeatures[] = {
    {0x10, "vcp_luminance", 100, 75, true},    {0x12, "vcp_contrast", 100, 50, true},
    {0x14, "vcp_colour_preset", 11, 5, true},  {0x16, "vcp_red_gain", 100, 50, true},
    {0x18, "vcp_green_gain", 100, 50, true},   {0x1A, "vcp_blue_gain", 100, 50, true},
    {0x60, "vcp_input_source", 255, 17, true}, {0x62, "vcp_volume", 100, 30, true},
    {0xD6, "vcp_power_mode", 5, 1, true},      {0xDF, "vcp_version", 0xFFFF, 0x0202, false},
};

constexpr std::uint8_t kRestoreDefaults = 0x04; ///< write only, any value but 0

} // namespace virtual_scaler

#endif
