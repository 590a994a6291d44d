#ifndef SCALER_ISP_SIMULATOR_ISP_DESCRIPTION_H
#define SCALER_ISP_SIMULATOR_ISP_DESCRIPTION_H

#include <cstdint>
#include <string>

namespace virtual_scaler {

/// The content of device.ini. Keys, defaults and comments of the file are one table in
/// Description.cpp.
struct Description {
    std::string scalerType;
    std::string model;
    std::string firmwareName;
    std::string hardwareId;
    std::string version;
    std::uint32_t versionAddress = 0;
    std::uint32_t versionLength = 0;
    std::uint32_t keyAddress = 0;
    std::uint32_t keyLength = 0;
    std::uint32_t copyBank = 0;
    std::uint32_t eepromBanks = 0;
    std::uint32_t eepromVersionAddress = 0;
    std::uint32_t eepromVersionLength = 0;
};

/// Reads the file, or creates it with the defaults, so that users have a file to edit. Missing keys
/// have their defaults. Throws Failure with the line number for anything else.
Description LoadDescription(const std::string &path);

} // namespace virtual_scaler

#endif
