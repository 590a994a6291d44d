#ifndef SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H
#define SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace virtual_scaler {

/// The value of a busy register, and how many reads return it.
struct BusyRegister {
    std::uint8_t value;
    std::uint32_t reads;
};

/// Injected faults, from faults.txt. One fault per line; # starts a comment line:
///
///     fail-bank N code C   fail with C (not 0) at bank N, which is left unchanged
///     flip-bit N           flip a bit of bank N between write and verify
///     power-loss N         fail halfway through writing bank N
///     slow M               delay each bank by M milliseconds
///     refuse-open          the device cannot be opened
///
/// and on the virtual bus:
///
///     nack A                        no slave responds at the I2C address A
///     wrong-ddcci-checksum          DDC/CI replies have a wrong checksum
///     busy SPACE A value V reads N  the first N reads of a register return V
struct Faults {
    std::map<std::uint32_t, int> failBank;
    std::set<std::uint32_t> flipBit;
    std::set<std::uint32_t> powerLoss;
    std::uint32_t slowMilliseconds = 0;
    bool refuseOpen = false;
    std::set<std::uint32_t> nack; ///< 8-bit addresses, even
    bool wrongChecksum = false;
    std::map<std::pair<std::string, std::uint32_t>, BusyRegister> busy; ///< by space and address

    /// Waits as "slow" specifies; called once per bank.
    void Delay() const;
};

/// Without a file there are no faults. Throws Failure for an invalid line: ignoring it would let a
/// test pass without its fault.
Faults LoadFaults(const std::string &path);

} // namespace virtual_scaler

#endif
