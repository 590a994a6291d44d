#ifndef SCALER_ISP_SIMULATOR_BUS_EDID_EEPROM_H
#define SCALER_ISP_SIMULATOR_BUS_EDID_EEPROM_H

#include <cstdint>
#include <string>
#include <vector>

namespace virtual_scaler {

/// The EEPROM at 0xA0: edid.bin in the device's directory, created with the default EDID if
/// missing. A segment is 256 bytes; the last one is padded with 0xFF after the end of the file.
class EdidEeprom {
  public:
    /// Throws Failure VIRTUAL_BUS_NO_STATE.
    explicit EdidEeprom(const std::string &directory);

    bool HasSegment(std::uint8_t segment) const {
        return std::size_t{segment} * 256 < m_bytes.size();
    }
    /// REQUIRES: HasSegment(segment).
    std::uint8_t &At(std::uint8_t segment, std::uint8_t address) {
        return m_bytes[std::size_t{segment} * 256 + address];
    }
    /// Writes all segments to edid.bin. Throws Failure VIRTUAL_BUS_NO_STATE.
    void Save() const;

  private:
    std::string m_path;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace virtual_scaler

#endif
