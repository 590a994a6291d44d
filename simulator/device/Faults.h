#ifndef SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H
#define SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace virtual_scaler {

/// What a register gives while it is busy, and how often.
struct BusyRegister {
    std::uint8_t value;
    std::uint32_t reads;
};

/// Faults on demand, from faults.txt. One fault a line, # starts a comment line:
///
///     fail-bank N code C   end with C (not 0) when bank N comes up; the bank is not touched
///     flip-bit N           flip a bit of bank N between writing and verifying
///     power-loss N         stop in the middle of writing bank N
///     slow M               take M milliseconds more a bank
///     refuse-open          the device cannot be opened
///
/// and on the virtual bus:
///
///     nack A                        no slave answers at the I2C address A
///     wrong-ddcci-checksum          replies over DDC/CI bear a wrong checksum
///     busy SPACE A value V reads N  the first N reads of a register give V
struct Faults {
    std::map<std::uint32_t, int> failBank;
    std::set<std::uint32_t> flipBit;
    std::set<std::uint32_t> powerLoss;
    std::uint32_t slowMilliseconds = 0;
    bool refuseOpen = false;
    std::set<std::uint32_t> nack; ///< 8-bit addresses, even
    bool wrongChecksum = false;
    std::map<std::pair<std::string, std::uint32_t>, BusyRegister> busy; ///< by space and address

    /// Waits as "slow" asks for; once a bank.
    void Delay() const;
};

/// No file, no faults. Throws Failure for a line that cannot be understood: a fault that is
/// overlooked would make a test pass that did not happen.
Faults LoadFaults(const std::string &path);

} // namespace virtual_scaler

#endif
