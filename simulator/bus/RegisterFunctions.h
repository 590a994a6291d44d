#ifndef SCALER_ISP_SIMULATOR_BUS_REGISTER_FUNCTIONS_H
#define SCALER_ISP_SIMULATOR_BUS_REGISTER_FUNCTIONS_H

#include "bus/BusSession.h"
#include "bus/I2cBus.h"
#include "scaler_isp/abi/CommTypes.h"

namespace virtual_scaler {

/// The registers of all widths. Addresses wrap at the end of their width. Functions with masks
/// write (value & andMask) | orMask. Registers of 32 bits are four bytes, little-endian. Every
/// function fails by throwing Failure.
class RegisterFunctions {
    using u8 = unsigned char;
    using u16 = unsigned short;
    using u32 = unsigned int;
    using Mode = STRUCT_ENUM_INC_TYPE;
    using Command = STRUCT_ENUM_SYS_DEVICE_CMD_TYPE;
    using Cpu = STRUCT_ENUM_CPU_TYPE;

  public:
    explicit RegisterFunctions(BusSession &session) : m_session(session) {}

    // 8-bit addresses are the first 256 of the 16-bit ones.
    void ReadReg(u8 addr, u8 *value);
    void WriteReg(u8 addr, u8 value);
    void ReadRegs(u8 addr, u16 length, u8 *data, Mode inc);
    void WriteRegs(u8 addr, u16 length, u8 *data, Mode inc);
    void WriteRegBit(u8 addr, u8 andMask, u8 orMask);
    void ReadRegEx(u16 addr, u8 *value);
    void WriteRegEx(u16 addr, u8 value);
    void ReadRegsEx(u16 addr, u16 length, u8 *data, Mode inc);
    void WriteRegsEx(u16 addr, u16 length, u8 *data, Mode inc);
    void WriteRegBitEx(u16 addr, u8 andMask, u8 orMask);
    // An indirect register: `addr` selects index `port`; `addr` + 1 then reads back its value.
    void WritePortRegBit(u8 addr, u8 port, u8 andMask, u8 orMask);
    void WritePortRegBitEx(u16 addr, u16 port, u8 andMask, u8 orMask);

    void ReadSysDevice(u8 device, u8 addr, u8 length, u8 *data, Command command);
    void WriteSysDevice(u8 device, u8 addr, u8 length, u8 *data, Command command);
    void ReadWordSysDevice(u8 device, u16 addr, u8 length, u8 *data, Command command);
    void WriteWordSysDevice(u8 device, u16 addr, u8 length, u8 *data, Command command);

    void WriteMcuReg(u16 addr, u8 value);
    void WriteMcuRegBit(u16 addr, u8 andMask, u8 orMask);
    void ReadMcuReg(u16 addr, u8 *value);
    void WriteMcuRegs(u16 addr, u16 length, u8 *data, Mode inc);
    void ReadMcuRegs(u16 addr, u16 length, u8 *data, Mode inc);
    void WriteContinuousMcuReg(u8 addr, u16 length, u8 *data, Mode inc);
    void ReadContinuousMcuReg(u8 addr, u16 length, u8 *data, Mode inc);

    // `length` is a number of registers, not bytes.
    void Read32BitRegEx(u32 addr, u32 *value);
    void Read32BitReg1Byte(u32 addr, u8 *value);
    void Write32BitReg1Byte(u32 addr, u8 value);
    void Write32BitRegEx(u32 addr, u32 value);
    void Read32BitRegsEx(u32 addr, u16 length, u32 *data, Mode inc);
    void Write32BitRegsEx(u32 addr, u16 length, u32 *data, Mode inc);
    void ReadDDRRegEx(u32 addr, u32 *value);
    void WriteDDRRegEx(u32 addr, u32 value);
    void ReadDDRRegsEx(u32 addr, u16 length, u32 *data, Mode inc);
    void WriteDDRRegsEx(u32 addr, u16 length, u32 *data, Mode inc);
    void ReadDDRCPURegEx(u32 addr, u32 *value, Cpu cpu);
    void WriteDDRCPURegEx(u32 addr, u32 value, Cpu cpu);
    void ReadDDRCPURegsEx(u32 addr, u16 length, u32 *data, Mode inc, Cpu cpu);
    void WriteDDRCPURegsEx(u32 addr, u16 length, u32 *data, Mode inc, Cpu cpu);

    void ReadPWM2SPIReg(u8 slave, u8 addr, u8 length, u8 *data);
    void WritePWM2SPIReg(u8 slave, u8 addr, u8 length, u8 *data);
    void ReadPWM2SPIDev(u8 slave, u8 addr, u8 length, u16 *data);
    void WritePWM2SPIDev(u8 slave, u8 addr, u8 length, u16 *data);

  private:
    /// The part of a space that a function can access: base + (address & mask).
    struct Window {
        const char *space;
        u32 mask;
        u32 base = 0;
    };
    void ReadBytes(const Window &window, u32 addr, const Transfer &transfer);
    void WriteBytes(const Window &window, u32 addr, const Transfer &transfer);
    void ChangeBits(const Window &window, u32 addr, u8 andMask, u8 orMask);
    void ReadWords(const std::string &space, u32 addr, u32 length, u32 *data, Mode inc);
    void WriteWords(const std::string &space, u32 addr, u32 length, const u32 *data, Mode inc);
    void ChangePort(u32 mask, u32 addr, u32 port, u8 andMask, u8 orMask);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
