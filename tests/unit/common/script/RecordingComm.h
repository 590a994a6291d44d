#ifndef SCALER_ISP_TESTS_UNIT_COMMON_SCRIPT_RECORDING_COMM_H
#define SCALER_ISP_TESTS_UNIT_COMMON_SCRIPT_RECORDING_COMM_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "scaler_isp/plugins/CNxComm.h"

/// Writes every call of a register script down, one text each, numbers in hexadecimal:
/// "WriteReg 10 20"; data bytes and the address mode as in "WriteRegs 10 2 AA BB inc 1". Reads
/// deliver 01, 02, 03 ... A method that no script calls answers as not loaded.
class RecordingComm : public CNxComm {
  public:
    std::vector<std::string> calls;
    std::map<std::size_t, unsigned int> failures; ///< status by number of the call, first is 1
    std::vector<unsigned char> reads;             ///< what reads deliver first
    unsigned char next = 1;

    unsigned int ScalerRun() override {
        return Call("ScalerRun", {});
    }
    unsigned int ScalerStop() override {
        return Call("ScalerStop", {});
    }
    unsigned int WriteReg(unsigned char addr, unsigned char value) override {
        return Call("WriteReg", {addr, value});
    }
    unsigned int WriteRegBit(unsigned char addr, unsigned char b1, unsigned char b2) override {
        return Call("WriteRegBit", {addr, b1, b2});
    }
    unsigned int ReadReg(unsigned char addr, unsigned char *out) override {
        return Read("ReadReg", {addr}, out);
    }
    unsigned int WriteMcuReg(unsigned short addr, unsigned char value) override {
        return Call("WriteMcuReg", {addr, value});
    }
    unsigned int ReadMcuReg(unsigned short addr, unsigned char *out) override {
        return Read("ReadMcuReg", {addr}, out);
    }
    unsigned int I2CWriteByte(unsigned char slave, unsigned char sub,
                              unsigned char value) override {
        return Call("I2CWriteByte", {slave, sub, value});
    }
    unsigned int I2CRead(unsigned char slave, unsigned char sub, unsigned short length,
                         unsigned char *out) override {
        return Read("I2CRead", {slave, sub, length}, out, length);
    }
    unsigned int I2CCurrentRead(unsigned char slave, unsigned short length,
                                unsigned char *out) override {
        return Read("I2CCurrentRead", {slave, length}, out, length);
    }
    unsigned int WritePortRegBit(unsigned char a, unsigned char b, unsigned char c,
                                 unsigned char d) override {
        return Call("WritePortRegBit", {a, b, c, d});
    }
    unsigned int WriteMcuRegBit(unsigned short addr, unsigned char b1, unsigned char b2) override {
        return Call("WriteMcuRegBit", {addr, b1, b2});
    }
    unsigned int WriteRegEx(unsigned short addr, unsigned char value) override {
        return Call("WriteRegEx", {addr, value});
    }
    unsigned int WriteRegBitEx(unsigned short addr, unsigned char b1, unsigned char b2) override {
        return Call("WriteRegBitEx", {addr, b1, b2});
    }
    unsigned int ReadRegEx(unsigned short addr, unsigned char *out) override {
        return Read("ReadRegEx", {addr}, out);
    }
    unsigned int WritePortRegBitEx(unsigned short addr, unsigned short port, unsigned char b1,
                                   unsigned char b2) override {
        return Call("WritePortRegBitEx", {addr, port, b1, b2});
    }
    unsigned int WriteRegsEx(unsigned short addr, unsigned short length, unsigned char *data,
                             STRUCT_ENUM_INC_TYPE inc) override {
        return Write("WriteRegsEx", addr, length, data, inc);
    }
    unsigned int ReadRegsEx(unsigned short addr, unsigned short length, unsigned char *out,
                            STRUCT_ENUM_INC_TYPE inc) override {
        return Read("ReadRegsEx", {addr, length, static_cast<unsigned int>(inc)}, out, length);
    }
    unsigned int WriteRegs(unsigned char addr, unsigned short length, unsigned char *data,
                           STRUCT_ENUM_INC_TYPE inc) override {
        return Write("WriteRegs", addr, length, data, inc);
    }
    unsigned int ReadRegs(unsigned char addr, unsigned short length, unsigned char *out,
                          STRUCT_ENUM_INC_TYPE inc) override {
        return Read("ReadRegs", {addr, length, static_cast<unsigned int>(inc)}, out, length);
    }
    unsigned int WriteMcuRegs(unsigned short addr, unsigned short length, unsigned char *data,
                              STRUCT_ENUM_INC_TYPE inc) override {
        return Write("WriteMcuRegs", addr, length, data, inc);
    }
    unsigned int ReadMcuRegs(unsigned short addr, unsigned short length, unsigned char *out,
                             STRUCT_ENUM_INC_TYPE inc) override {
        return Read("ReadMcuRegs", {addr, length, static_cast<unsigned int>(inc)}, out, length);
    }
    unsigned int Write32BitRegEx(unsigned int addr, unsigned int value) override {
        return Call("Write32BitRegEx", {addr, value});
    }

    static std::string Hex(unsigned int number) {
        constexpr const char *kDigits = "0123456789ABCDEF";
        return (number >= 16 ? Hex(number / 16) : "") + kDigits[number % 16];
    }

  private:
    unsigned int Call(std::string text, const std::vector<unsigned int> &numbers) {
        for (const unsigned int number : numbers) {
            text += ' ' + Hex(number);
        }
        calls.push_back(std::move(text));
        const auto failure = failures.find(calls.size());
        return failure != failures.end() ? failure->second : 0;
    }

    unsigned int Write(std::string text, unsigned int addr, unsigned int length,
                       const unsigned char *data, STRUCT_ENUM_INC_TYPE inc) {
        text += ' ' + Hex(addr) + ' ' + Hex(length);
        for (unsigned int i = 0; i < length; ++i) {
            text += ' ' + Hex(data[i]);
        }
        return Call(text + " inc " + Hex(static_cast<unsigned int>(inc)), {});
    }

    unsigned int Read(const std::string &text, const std::vector<unsigned int> &numbers,
                      unsigned char *out, unsigned int length = 1) {
        const unsigned int status = Call(text + (out == nullptr ? " into nothing" : ""), numbers);
        for (unsigned int i = 0; out != nullptr && i < length; ++i) {
            out[i] = NextRead();
        }
        return status;
    }

    unsigned char NextRead() {
        if (reads.empty()) {
            return next++;
        }
        const unsigned char value = reads.front();
        reads.erase(reads.begin());
        return value;
    }
};

/// The waits of the script runner. UNITS: microseconds.
extern std::vector<unsigned int> g_waits;

#endif
