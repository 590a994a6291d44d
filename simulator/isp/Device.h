#ifndef SCALER_ISP_SIMULATOR_ISP_DEVICE_H
#define SCALER_ISP_SIMULATOR_ISP_DEVICE_H

#include <cstdint>
#include <string>

#include "device/Faults.h"
#include "device/MemoryFile.h"
#include "isp/Description.h"
#include "scaler_isp/abi/CommandSetting.h"

namespace virtual_scaler {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr std::uint32_t kBankBytes = SCALER_ISP_BANK_BYTES;
constexpr std::uint32_t kFlashBanks = 256;

/// The device for the length of one call.
struct Device {
    /// Makes the folder and its files where they are missing. Throws Failure.
    explicit Device(const std::string &folder);

    /// "isp" or "normal", kept in mode.txt.
    void SetMode(const char *mode) const;

    std::string folder;
    Faults faults;
    Description description;
    MemoryFile flash;
    MemoryFile eeprom;
};

} // namespace virtual_scaler

#endif
