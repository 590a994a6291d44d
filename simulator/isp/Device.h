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

/// The device during one call.
struct Device {
    /// Creates the directory and its files if they are missing. Throws Failure.
    explicit Device(const std::string &directory);

    /// Stores "isp" or "normal" in mode.txt. Throws Failure.
    void SetMode(const char *mode) const;

    std::string directory;
    Faults faults;
    Description description;
    MemoryFile flash;
    MemoryFile eeprom;
};

} // namespace virtual_scaler

#endif
