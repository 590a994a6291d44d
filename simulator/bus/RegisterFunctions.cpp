#include "bus/RegisterFunctions.h"

namespace virtual_scaler {
namespace {

constexpr const char *kReg = "reg";
constexpr const char *kPort = "port";
constexpr const char *kMcu = "mcu";
constexpr const char *kSys = "sys";
constexpr const char *kReg32 = "reg32";
constexpr const char *kPwmReg = "pwm_reg";
constexpr const char *kPwmDev = "pwm_dev";
constexpr unsigned int k8 = 0xFF;
constexpr unsigned int k16 = 0xFFFF;
constexpr STRUCT_ENUM_CPU_TYPE kFirstCpu{};

std::string DdrSpace(STRUCT_ENUM_CPU_TYPE cpu) {
    return "ddr" + std::to_string(static_cast<unsigned>(cpu));
}

} // namespace

void RegisterFunctions::ReadBytes(const Window &window, u32 addr, const Transfer &transfer) {
    m_session.RequirePresent();
    const u32 step = AddressStep(transfer.mode);
    for (u32 i = 0; i < transfer.length; ++i, addr += step) {
        transfer.data[i] = m_session.ReadByte(window.space, window.base + (addr & window.mask));
    }
}

void RegisterFunctions::WriteBytes(const Window &window, u32 addr, const Transfer &transfer) {
    m_session.RequirePresent();
    const u32 step = AddressStep(transfer.mode);
    SparseBytes &space = m_session.state.spaces[window.space];
    for (u32 i = 0; i < transfer.length; ++i, addr += step) {
        space.Write(window.base + (addr & window.mask), transfer.data[i]);
    }
}

void RegisterFunctions::ChangeBits(const Window &window, u32 addr, u8 andMask, u8 orMask) {
    u8 value = 0;
    ReadBytes(window, addr, {1, &value});
    value = static_cast<u8>((value & andMask) | orMask);
    WriteBytes(window, addr, {1, &value});
}

void RegisterFunctions::ReadWords(const std::string &space, u32 addr, u32 length, u32 *data,
                                  Mode inc) {
    m_session.RequirePresent();
    const u32 step = 4 * AddressStep(inc);
    for (u32 i = 0; i < length; ++i, addr += step) {
        data[i] = 0;
        for (u32 byte = 0; byte < 4; ++byte) {
            data[i] |= u32{m_session.ReadByte(space, addr + byte)} << (8 * byte);
        }
    }
}

void RegisterFunctions::WriteWords(const std::string &space, u32 addr, u32 length, const u32 *data,
                                   Mode inc) {
    m_session.RequirePresent();
    const u32 step = 4 * AddressStep(inc);
    SparseBytes &bytes = m_session.state.spaces[space];
    for (u32 i = 0; i < length; ++i, addr += step) {
        for (u32 byte = 0; byte < 4; ++byte) {
            bytes.Write(addr + byte, static_cast<u8>(data[i] >> (8 * byte)));
        }
    }
}

void RegisterFunctions::ChangePort(u32 mask, u32 addr, u32 port, u8 andMask, u8 orMask) {
    const Window window{kPort, k16, addr << 16};
    ChangeBits(window, port, andMask, orMask);
    u8 shown[2] = {static_cast<u8>(port), 0};
    ReadBytes(window, port, {1, &shown[1]});
    WriteBytes({kReg, mask}, addr, {2, shown});
}

void RegisterFunctions::ReadReg(u8 addr, u8 *value) {
    ReadBytes({kReg, k8}, addr, {1, value});
}
void RegisterFunctions::WriteReg(u8 addr, u8 value) {
    WriteBytes({kReg, k8}, addr, {1, &value});
}
void RegisterFunctions::ReadRegs(u8 addr, u16 length, u8 *data, Mode inc) {
    ReadBytes({kReg, k8}, addr, {length, data, inc});
}
void RegisterFunctions::WriteRegs(u8 addr, u16 length, u8 *data, Mode inc) {
    WriteBytes({kReg, k8}, addr, {length, data, inc});
}
void RegisterFunctions::WriteRegBit(u8 addr, u8 andMask, u8 orMask) {
    ChangeBits({kReg, k8}, addr, andMask, orMask);
}
void RegisterFunctions::WritePortRegBit(u8 addr, u8 port, u8 andMask, u8 orMask) {
    ChangePort(k8, addr, port, andMask, orMask);
}
void RegisterFunctions::ReadRegEx(u16 addr, u8 *value) {
    ReadBytes({kReg, k16}, addr, {1, value});
}
void RegisterFunctions::WriteRegEx(u16 addr, u8 value) {
    WriteBytes({kReg, k16}, addr, {1, &value});
}
void RegisterFunctions::ReadRegsEx(u16 addr, u16 length, u8 *data, Mode inc) {
    ReadBytes({kReg, k16}, addr, {length, data, inc});
}
void RegisterFunctions::WriteRegsEx(u16 addr, u16 length, u8 *data, Mode inc) {
    WriteBytes({kReg, k16}, addr, {length, data, inc});
}
void RegisterFunctions::WriteRegBitEx(u16 addr, u8 andMask, u8 orMask) {
    ChangeBits({kReg, k16}, addr, andMask, orMask);
}
void RegisterFunctions::WritePortRegBitEx(u16 addr, u16 port, u8 andMask, u8 orMask) {
    ChangePort(k16, addr, port, andMask, orMask);
}

// The command is written to the journal and has no other effect.
void RegisterFunctions::ReadSysDevice(u8 device, u8 addr, u8 length, u8 *data, Command) {
    ReadBytes({kSys, k8, u32{device} << 16}, addr, {length, data});
}
void RegisterFunctions::WriteSysDevice(u8 device, u8 addr, u8 length, u8 *data, Command) {
    WriteBytes({kSys, k8, u32{device} << 16}, addr, {length, data});
}
void RegisterFunctions::ReadWordSysDevice(u8 device, u16 addr, u8 length, u8 *data, Command) {
    ReadBytes({kSys, k16, u32{device} << 16}, addr, {length, data});
}
void RegisterFunctions::WriteWordSysDevice(u8 device, u16 addr, u8 length, u8 *data, Command) {
    WriteBytes({kSys, k16, u32{device} << 16}, addr, {length, data});
}

void RegisterFunctions::WriteMcuReg(u16 addr, u8 value) {
    WriteBytes({kMcu, k16}, addr, {1, &value});
}
void RegisterFunctions::WriteMcuRegBit(u16 addr, u8 andMask, u8 orMask) {
    ChangeBits({kMcu, k16}, addr, andMask, orMask);
}
void RegisterFunctions::ReadMcuReg(u16 addr, u8 *value) {
    ReadBytes({kMcu, k16}, addr, {1, value});
}
void RegisterFunctions::WriteMcuRegs(u16 addr, u16 length, u8 *data, Mode inc) {
    WriteBytes({kMcu, k16}, addr, {length, data, inc});
}
void RegisterFunctions::ReadMcuRegs(u16 addr, u16 length, u8 *data, Mode inc) {
    ReadBytes({kMcu, k16}, addr, {length, data, inc});
}
void RegisterFunctions::WriteContinuousMcuReg(u8 addr, u16 length, u8 *data, Mode inc) {
    WriteBytes({kMcu, k8}, addr, {length, data, inc});
}
void RegisterFunctions::ReadContinuousMcuReg(u8 addr, u16 length, u8 *data, Mode inc) {
    ReadBytes({kMcu, k8}, addr, {length, data, inc});
}

void RegisterFunctions::Read32BitRegEx(u32 addr, u32 *value) {
    ReadWords(kReg32, addr, 1, value, INC_TYPE_0);
}
void RegisterFunctions::Read32BitReg1Byte(u32 addr, u8 *value) {
    ReadBytes({kReg32, 0xFFFFFFFF}, addr, {1, value});
}
void RegisterFunctions::Write32BitReg1Byte(u32 addr, u8 value) {
    WriteBytes({kReg32, 0xFFFFFFFF}, addr, {1, &value});
}
void RegisterFunctions::Write32BitRegEx(u32 addr, u32 value) {
    WriteWords(kReg32, addr, 1, &value, INC_TYPE_0);
}
void RegisterFunctions::Read32BitRegsEx(u32 addr, u16 length, u32 *data, Mode inc) {
    ReadWords(kReg32, addr, length, data, inc);
}
void RegisterFunctions::Write32BitRegsEx(u32 addr, u16 length, u32 *data, Mode inc) {
    WriteWords(kReg32, addr, length, data, inc);
}
void RegisterFunctions::ReadDDRRegEx(u32 addr, u32 *value) {
    ReadDDRCPURegEx(addr, value, kFirstCpu);
}
void RegisterFunctions::WriteDDRRegEx(u32 addr, u32 value) {
    WriteDDRCPURegEx(addr, value, kFirstCpu);
}
void RegisterFunctions::ReadDDRRegsEx(u32 addr, u16 length, u32 *data, Mode inc) {
    ReadDDRCPURegsEx(addr, length, data, inc, kFirstCpu);
}
void RegisterFunctions::WriteDDRRegsEx(u32 addr, u16 length, u32 *data, Mode inc) {
    WriteDDRCPURegsEx(addr, length, data, inc, kFirstCpu);
}
void RegisterFunctions::ReadDDRCPURegEx(u32 addr, u32 *value, Cpu cpu) {
    ReadWords(DdrSpace(cpu), addr, 1, value, INC_TYPE_0);
}
void RegisterFunctions::WriteDDRCPURegEx(u32 addr, u32 value, Cpu cpu) {
    WriteWords(DdrSpace(cpu), addr, 1, &value, INC_TYPE_0);
}
void RegisterFunctions::ReadDDRCPURegsEx(u32 addr, u16 length, u32 *data, Mode inc, Cpu cpu) {
    ReadWords(DdrSpace(cpu), addr, length, data, inc);
}
void RegisterFunctions::WriteDDRCPURegsEx(u32 addr, u16 length, u32 *data, Mode inc, Cpu cpu) {
    WriteWords(DdrSpace(cpu), addr, length, data, inc);
}

void RegisterFunctions::ReadPWM2SPIReg(u8 slave, u8 addr, u8 length, u8 *data) {
    ReadBytes({kPwmReg, k8, u32{slave} << 8}, addr, {length, data});
}
void RegisterFunctions::WritePWM2SPIReg(u8 slave, u8 addr, u8 length, u8 *data) {
    WriteBytes({kPwmReg, k8, u32{slave} << 8}, addr, {length, data});
}
// Registers of 16 bits, little-endian.
void RegisterFunctions::ReadPWM2SPIDev(u8 slave, u8 addr, u8 length, u16 *data) {
    for (u32 i = 0; i < length; ++i) {
        u8 bytes[2] = {};
        ReadBytes({kPwmDev, 0x1FF, u32{slave} << 9}, 2 * (addr + i), {2, bytes});
        data[i] = static_cast<u16>(bytes[0] | bytes[1] << 8);
    }
}
void RegisterFunctions::WritePWM2SPIDev(u8 slave, u8 addr, u8 length, u16 *data) {
    for (u32 i = 0; i < length; ++i) {
        u8 bytes[2] = {static_cast<u8>(data[i]), static_cast<u8>(data[i] >> 8)};
        WriteBytes({kPwmDev, 0x1FF, u32{slave} << 9}, 2 * (addr + i), {2, bytes});
    }
}

} // namespace virtual_scaler
