#ifndef SCALER_ISP_SIMULATOR_BUS_I2C_FUNCTIONS_H
#define SCALER_ISP_SIMULATOR_BUS_I2C_FUNCTIONS_H

#include "bus/I2cBus.h"

namespace virtual_scaler {

/// I2C from the adapter, from the scaler's own master, as the scaler's slave, and DDC/CI: all reach
/// the same slaves. Every function fails by throwing Failure.
class I2cFunctions {
    using u8 = unsigned char;
    using u16 = unsigned short;
    using Mode = STRUCT_ENUM_INC_TYPE;

  public:
    explicit I2cFunctions(BusSession &session) : m_session(session), m_bus(session) {}

    void I2CWrite(u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void I2CRead(u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }
    void I2CWriteByte(u8 slave, u8 sub, u8 value) {
        m_bus.Write(slave, sub, {1, &value});
    }
    void I2CCurrentRead(u8 slave, u16 length, u8 *data) {
        m_bus.CurrentRead(slave, {length, data});
    }
    void I2CWordWrite(u8 slave, u16 sub, u16 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void I2CWordRead(u8 slave, u16 sub, u16 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }
    void I2CWriteEx(u8 slave, u8 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Write(slave, sub, {length, data, inc});
    }
    void I2CReadEx(u8 slave, u8 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Read(slave, sub, {length, data, inc});
    }
    void I2CCurrentReadEx(u8 slave, u16 length, u8 *data) {
        m_bus.CurrentRead(slave, {length, data});
    }
    void I2CWordWriteEx(u8 slave, u16 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Write(slave, sub, {length, data, inc});
    }
    void I2CWordReadEx(u8 slave, u16 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Read(slave, sub, {length, data, inc});
    }

    void I2CWriteSegment(u8 segmentSlave, u8 segment, u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.WriteSegment(segmentSlave, segment, slave, sub, {length, data});
    }
    void I2CWriteSegmentEx(u8 segmentSlave, u8 segment, u8 slave, u8 sub, u16 length, u8 *data,
                           Mode inc) {
        m_bus.WriteSegment(segmentSlave, segment, slave, sub, {length, data, inc});
    }
    void I2CReadSegment(u8 segmentSlave, u8 segment, u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.ReadSegment(segmentSlave, segment, slave, sub, {length, data});
    }
    void I2CReadSegmentEx(u8 segmentSlave, u8 segment, u8 slave, u8 sub, u16 length, u8 *data,
                          Mode inc) {
        m_bus.ReadSegment(segmentSlave, segment, slave, sub, {length, data, inc});
    }

    void I2CMasterInitial(STRUCT_ENUM_IIC_MASTER_SPEED speed) {
        m_session.state.Number("master_speed") = speed;
    }
    void I2CMasterCurrentRead(u8 slave, u16 length, u8 *data) {
        m_bus.CurrentRead(slave, {length, data});
    }
    void I2CMasterCurrentReadEx(u8 slave, u16 length, u8 *data) {
        m_bus.CurrentRead(slave, {length, data});
    }
    void I2CMasterRead(u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }
    void I2CMasterReadEx(u8 slave, u8 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Read(slave, sub, {length, data, inc});
    }
    void I2CMasterWordRead(u8 slave, u16 sub, u16 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }
    void I2CMasterWordReadEx(u8 slave, u16 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Read(slave, sub, {length, data, inc});
    }
    void I2CMasterCurrentWrite(u8 slave, u16 length, u8 *data) {
        WriteAsSent(slave, length, data);
    }
    void I2CMasterCurrentWriteEx(u8 slave, u16 length, u8 *data) {
        WriteAsSent(slave, length, data);
    }
    void I2CMasterWrite(u8 slave, u8 sub, u16 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void I2CMasterWriteByte(u8 slave, u8 sub, u8 value) {
        m_bus.Write(slave, sub, {1, &value});
    }
    void I2CMasterWriteEx(u8 slave, u8 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Write(slave, sub, {length, data, inc});
    }
    void I2CMasterWordWrite(u8 slave, u16 sub, u16 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void I2CMasterWordWriteEx(u8 slave, u16 sub, u16 length, u8 *data, Mode inc) {
        m_bus.Write(slave, sub, {length, data, inc});
    }

    void I2CSlaveWrite(u8 slave, u8 sub, u8 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void I2CSlaveRead(u8 slave, u8 sub, u8 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }
    void I2CStretchRead(u8 slave, u8 sub, u8 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }

    // The raw bytes of the message, including the checksum, after `sub`, which is the source
    // address.
    void DDCCIWrite(u8 slave, u8 sub, u8 length, u8 *data) {
        m_bus.Write(slave, sub, {length, data});
    }
    void DDCCIRead(u8 slave, u8 sub, u8 length, u8 *data) {
        m_bus.Read(slave, sub, {length, data});
    }

  private:
    /// The first byte is the sub-address.
    void WriteAsSent(u8 slave, u16 length, u8 *data) {
        const u8 sub = length > 0 ? data[0] : u8{0};
        const auto rest = static_cast<u16>(length > 0 ? length - 1 : 0);
        m_bus.Write(slave, sub, {rest, length > 0 ? data + 1 : data});
    }

    BusSession &m_session;
    I2cBus m_bus;
};

} // namespace virtual_scaler

#endif
