#include "bus/I2cBus.h"

#include <algorithm>
#include <vector>

#include "bus/BusStatus.h"
#include "bus/DdcCi.h"
#include "bus/EdidEeprom.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

constexpr std::uint32_t kEdidSlave = 0xA0;
constexpr std::uint32_t kSegmentSlave = 0x60;
constexpr std::uint32_t kDdcCiSlave = 0x6E;

[[noreturn]] void Nack(std::uint32_t slave) {
    throw Failure{VIRTUAL_BUS_NACK, Format("No slave answers at 0x%02X", slave)};
}

/// Bytes after the end of the reply read as 0.
void CopyReply(const std::vector<std::uint8_t> &answer, const Transfer &transfer) {
    for (std::uint32_t i = 0; i < transfer.length; ++i) {
        transfer.data[i] = i < answer.size() ? answer[i] : std::uint8_t{0};
    }
}

} // namespace

std::uint32_t AddressStep(STRUCT_ENUM_INC_TYPE mode) {
    if (mode != INC_TYPE_0 && mode != INC_TYPE_1) {
        throw Failure{VIRTUAL_BUS_BAD_ARGUMENT,
                      Format("Address mode 0x%X", static_cast<unsigned>(mode))};
    }
    return mode == INC_TYPE_0 ? 1 : 0;
}

I2cBus::Slave I2cBus::Find(std::uint8_t slave) {
    m_session.RequirePresent();
    const std::uint32_t address = slave & 0xFEU;
    const auto is = [&](const char *number) {
        return address == (m_session.state.Number(number) & 0xFEU);
    };
    if (m_session.Fault().nack.count(address) != 0) {
        Nack(address);
    }
    if (address == kEdidSlave) {
        return Slave::Edid;
    }
    if (address == kSegmentSlave) {
        return Slave::SegmentPointer;
    }
    if (address == kDdcCiSlave) {
        return Slave::DdcCi;
    }
    if (is("debug_slave") || is("isp_slave") || is("isp_continuous_slave")) {
        return Slave::Scaler;
    }
    Nack(address);
}

void I2cBus::Write(std::uint8_t slave, std::uint16_t sub, const Transfer &transfer) {
    const std::uint32_t step = AddressStep(transfer.mode);
    switch (Find(slave)) {
    case Slave::Edid:
        WriteEdid(0, static_cast<std::uint8_t>(sub), transfer);
        break;
    case Slave::DdcCi: {
        std::vector<std::uint8_t> message(std::size_t{transfer.length} + 1);
        message[0] = static_cast<std::uint8_t>(sub);
        std::copy_n(transfer.data, transfer.length, message.begin() + 1);
        DdcCi(m_session).Receive(message);
        break;
    }
    case Slave::Scaler:
        for (std::uint32_t i = 0; i < transfer.length; ++i) {
            m_session.state.spaces["reg"].Write(sub, transfer.data[i]);
            sub = static_cast<std::uint16_t>(sub + step);
        }
        m_session.state.Number("register_address") = sub;
        break;
    case Slave::SegmentPointer:
        break; // the end of the transfer sets it back to 0
    }
}

void I2cBus::Read(std::uint8_t slave, std::uint16_t sub, const Transfer &transfer) {
    AddressStep(transfer.mode);
    switch (Find(slave)) {
    case Slave::Edid:
        ReadEdid(0, static_cast<std::uint8_t>(sub), transfer);
        break;
    case Slave::DdcCi:
        CopyReply(DdcCi(m_session).TakeReply(), transfer);
        break;
    case Slave::Scaler:
        ReadRegisters(sub, transfer);
        break;
    case Slave::SegmentPointer:
        Nack(slave); // it can only be written
    }
}

void I2cBus::CurrentRead(std::uint8_t slave, const Transfer &transfer) {
    const char *number = Find(slave) == Slave::Edid ? "edid_address" : "register_address";
    Read(slave, static_cast<std::uint16_t>(m_session.state.Number(number)), transfer);
}

void I2cBus::WriteSegment(std::uint8_t pointer, std::uint8_t segment, std::uint8_t slave,
                          std::uint8_t sub, const Transfer &transfer) {
    RequireSegmentPointer(pointer, slave);
    WriteEdid(segment, sub, transfer);
}

void I2cBus::ReadSegment(std::uint8_t pointer, std::uint8_t segment, std::uint8_t slave,
                         std::uint8_t sub, const Transfer &transfer) {
    RequireSegmentPointer(pointer, slave);
    ReadEdid(segment, sub, transfer);
}

void I2cBus::RequireSegmentPointer(std::uint8_t pointer, std::uint8_t slave) {
    if (Find(pointer) != Slave::SegmentPointer) {
        Nack(pointer);
    }
    if (Find(slave) != Slave::Edid) {
        Nack(slave);
    }
}

void I2cBus::WriteEdid(std::uint8_t segment, std::uint8_t sub, const Transfer &transfer) {
    EdidEeprom eeprom(m_session.Directory());
    if (!eeprom.HasSegment(segment)) {
        Nack(kEdidSlave);
    }
    const std::uint32_t step = AddressStep(transfer.mode);
    for (std::uint32_t i = 0; i < transfer.length; ++i) {
        eeprom.At(segment, sub) = transfer.data[i];
        sub = static_cast<std::uint8_t>(sub + step);
    }
    eeprom.Save();
    m_session.state.Number("edid_address") = sub;
}

void I2cBus::ReadEdid(std::uint8_t segment, std::uint8_t sub, const Transfer &transfer) {
    EdidEeprom eeprom(m_session.Directory());
    if (!eeprom.HasSegment(segment)) {
        Nack(kEdidSlave);
    }
    const std::uint32_t step = AddressStep(transfer.mode);
    for (std::uint32_t i = 0; i < transfer.length; ++i) {
        transfer.data[i] = eeprom.At(segment, sub);
        sub = static_cast<std::uint8_t>(sub + step);
    }
    m_session.state.Number("edid_address") = sub;
}

void I2cBus::ReadRegisters(std::uint16_t sub, const Transfer &transfer) {
    const std::uint32_t step = AddressStep(transfer.mode);
    for (std::uint32_t i = 0; i < transfer.length; ++i) {
        transfer.data[i] = m_session.ReadByte("reg", sub);
        sub = static_cast<std::uint16_t>(sub + step);
    }
    m_session.state.Number("register_address") = sub;
}

} // namespace virtual_scaler
