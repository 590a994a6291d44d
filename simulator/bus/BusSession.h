#ifndef SCALER_ISP_SIMULATOR_BUS_BUS_SESSION_H
#define SCALER_ISP_SIMULATOR_BUS_BUS_SESSION_H

#include <cstdint>
#include <string>

#include "bus/BusState.h"
#include "common/Files.h"
#include "device/Faults.h"

namespace virtual_scaler {

/// The virtual bus during one call: its state is read from registers.txt and written back if it
/// changed, so that both libraries and all processes see one device. A file lock makes other calls
/// wait.
class BusSession {
  public:
    /// Creates the directory and the file if they are missing. Throws Failure.
    explicit BusSession(std::string directory);

    /// Writes the state if it changed, so that reads do not touch the file. Throws Failure.
    void Save();

    /// RETURNS a byte of a register space, or the value of a busy register while it is busy.
    std::uint8_t ReadByte(const std::string &space, std::uint32_t address);
    /// Resets the read counts of busy registers in this process.
    static void RestartBusyReads();
    /// Throws Failure VIRTUAL_BUS_REMOVED after RemoveDevice.
    void RequirePresent();

    const std::string &Directory() const {
        return m_directory;
    }
    const Faults &Fault() const {
        return m_faults;
    }

    BusState state;

  private:
    std::string m_directory;
    Faults m_faults;
    Descriptor m_file;
    std::string m_text;
};

} // namespace virtual_scaler

#endif
