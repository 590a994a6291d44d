#ifndef SCALER_ISP_SIMULATOR_BUS_I2C_BUS_H
#define SCALER_ISP_SIMULATOR_BUS_I2C_BUS_H

#include <cstdint>

#include "bus/BusSession.h"
#include "scaler_isp/abi/CommTypes.h"

namespace virtual_scaler {

/// Bytes of one transfer, and how the address changes between them.
struct Transfer {
    std::uint32_t length;
    std::uint8_t *data;
    STRUCT_ENUM_INC_TYPE mode = INC_TYPE_0;
};

/// RETURNS 1 for INC_TYPE_0 (incrementing address), 0 for INC_TYPE_1 (fixed address). Throws
/// Failure VIRTUAL_BUS_BAD_ARGUMENT for any other mode.
std::uint32_t AddressStep(STRUCT_ENUM_INC_TYPE mode);

/// The slaves of the I2C bus: the EDID EEPROM at 0xA0 with its segment pointer at 0x60, DDC/CI at
/// 0x6E, and the scaler's registers at the debug and both ISP addresses. Addresses have 8 bits;
/// bit 0, the read/write bit, is ignored. Throws Failure VIRTUAL_BUS_NACK if no slave responds.
class I2cBus {
  public:
    explicit I2cBus(BusSession &session) : m_session(session) {}

    void Write(std::uint8_t slave, std::uint16_t sub, const Transfer &transfer);
    void Read(std::uint8_t slave, std::uint16_t sub, const Transfer &transfer);
    /// Reads from the address after the last transfer with this slave.
    void CurrentRead(std::uint8_t slave, const Transfer &transfer);
    /// Access a segment of the EEPROM: the pointer is set and used in one transfer, because it
    /// resets to 0 at the end of each.
    void WriteSegment(std::uint8_t pointer, std::uint8_t segment, std::uint8_t slave,
                      std::uint8_t sub, const Transfer &transfer);
    void ReadSegment(std::uint8_t pointer, std::uint8_t segment, std::uint8_t slave,
                     std::uint8_t sub, const Transfer &transfer);

  private:
    enum class Slave { Edid, SegmentPointer, DdcCi, Scaler };
    Slave Find(std::uint8_t slave);
    void RequireSegmentPointer(std::uint8_t pointer, std::uint8_t slave);
    void WriteEdid(std::uint8_t segment, std::uint8_t sub, const Transfer &transfer);
    void ReadEdid(std::uint8_t segment, std::uint8_t sub, const Transfer &transfer);
    void ReadRegisters(std::uint16_t sub, const Transfer &transfer);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
