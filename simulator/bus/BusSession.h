#ifndef SCALER_ISP_SIMULATOR_BUS_BUS_SESSION_H
#define SCALER_ISP_SIMULATOR_BUS_BUS_SESSION_H

#include <cstdint>
#include <string>

#include "bus/BusState.h"
#include "common/Files.h"
#include "device/Faults.h"

namespace virtual_scaler {

/// The virtual bus for the length of one call: what it remembers is read from registers.txt and
/// written back if it changed, so that both libraries and all processes see one device. Another
/// call, in any process, waits meanwhile.
class BusSession {
  public:
    /// Makes the folder and the file where they are missing. Throws Failure.
    explicit BusSession(std::string folder);

    /// Throws Failure.
    void Save();

    /// A byte of a register space, or what a busy register gives.
    std::uint8_t ReadByte(const std::string &space, std::uint32_t address);
    /// Busy registers count their reads in each process anew from here on.
    static void RestartBusyReads();
    /// Throws Failure VIRTUAL_BUS_REMOVED after RemoveDevice.
    void RequirePresent();

    const std::string &Folder() const {
        return m_folder;
    }
    const Faults &Fault() const {
        return m_faults;
    }

    BusState state;

  private:
    std::string m_folder;
    Faults m_faults;
    Descriptor m_file;
    std::string m_text;
};

} // namespace virtual_scaler

#endif
