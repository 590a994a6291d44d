#ifndef SCALER_ISP_SIMULATOR_BUS_EDID_EEPROM_H
#define SCALER_ISP_SIMULATOR_BUS_EDID_EEPROM_H

#include <cstdint>
#include <string>
#include <vector>

namespace virtual_scaler {

/// The EEPROM behind 0xA0: edid.bin in the device's folder, made with the default EDID where it is
/// missing. A segment is 256 bytes; what lies behind the end of the file in the last one is 0xFF.
class EdidEeprom {
  public:
    /// Throws Failure VIRTUAL_BUS_NO_STATE.
    explicit EdidEeprom(const std::string &folder);

    bool HasSegment(std::uint8_t segment) const {
        return std::size_t{segment} * 256 < m_bytes.size();
    }
    /// REQUIRES: the segment is there.
    std::uint8_t &At(std::uint8_t segment, std::uint8_t address) {
        return m_bytes[std::size_t{segment} * 256 + address];
    }
    /// Throws Failure VIRTUAL_BUS_NO_STATE.
    void Save() const;

  private:
    std::string m_path;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace virtual_scaler

#endif
