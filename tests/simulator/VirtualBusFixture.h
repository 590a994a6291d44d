#ifndef SCALER_ISP_TESTS_SIMULATOR_VIRTUAL_BUS_FIXTURE_H
#define SCALER_ISP_TESTS_SIMULATOR_VIRTUAL_BUS_FIXTURE_H

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "scaler_isp/plugins/CNxComm.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

using Octets = std::vector<unsigned char>;

/// The virtual communication library on a device of its own, through the library's binding.
class VirtualBus : public testing::Test {
  protected:
    VirtualBus() : m_device("SCALER_ISP_VIRTUAL_DEVICE", m_folder.Path("device")) {
        EXPECT_EQ(Load(comm), 1);
    }
    ~VirtualBus() override {
        comm.FreeCommDllFile();
    }

    static int Load(CNxComm &binding) {
        const std::string file = VIRTUAL_COMM_FILE;
        return binding.LoadCommDllFile(std::wstring(file.begin(), file.end()).data());
    }
    std::string Journal() const {
        return m_folder.Read("device/journal.txt");
    }
    void SetFaults(const std::string &text) {
        m_folder.Write("device/faults.txt", text);
    }
    unsigned char Reg(unsigned char addr) {
        unsigned char value = 0xEE;
        EXPECT_EQ(comm.ReadReg(addr, &value), 0U);
        return value;
    }
    /// Bytes read from an I2C slave.
    Octets Read(unsigned char slave, unsigned char sub, unsigned short length) {
        Octets bytes(length);
        EXPECT_EQ(comm.I2CRead(slave, sub, length, bytes.data()), 0U);
        return bytes;
    }
    unsigned int Write(unsigned char slave, unsigned char sub, Octets bytes) {
        return comm.I2CWrite(slave, sub, static_cast<unsigned short>(bytes.size()), bytes.data());
    }

    TempFolder m_folder;
    EnvGuard m_device;
    CNxComm comm;
};

#endif
