#ifndef SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H
#define SCALER_ISP_SIMULATOR_DEVICE_FAULTS_H

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace virtual_scaler {

/// Faults on demand, from faults.txt. One fault a line, # starts a comment line:
///
///     fail-bank N code C   end with C (not 0) when bank N comes up; the bank is not touched
///     flip-bit N           flip a bit of bank N between writing and verifying
///     power-loss N         stop in the middle of writing bank N
///     slow M               take M milliseconds more a bank
///     refuse-open          the device cannot be opened
struct Faults {
    std::map<std::uint32_t, int> failBank;
    std::set<std::uint32_t> flipBit;
    std::set<std::uint32_t> powerLoss;
    std::uint32_t slowMilliseconds = 0;
    bool refuseOpen = false;

    /// Waits as "slow" asks for; once a bank.
    void Delay() const;
};

/// No file, no faults. Throws Failure for a line that cannot be understood: a fault that is
/// overlooked would make a test pass that did not happen.
Faults LoadFaults(const std::string &path);

} // namespace virtual_scaler

#endif
