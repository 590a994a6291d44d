#ifndef SCALER_ISP_SIMULATOR_ISP_DESCRIPTION_H
#define SCALER_ISP_SIMULATOR_ISP_DESCRIPTION_H

#include <cstdint>
#include <string>

namespace virtual_scaler {

/// What device.ini says of the device. The defaults, the file's keys and its comments stand in one
/// table in the source.
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

/// Reads the file, or writes it with the defaults where there is none. Keys that are missing keep
/// their defaults. Throws Failure, with the number of the line, for anything else.
Description LoadDescription(const std::string &path);

} // namespace virtual_scaler

#endif
