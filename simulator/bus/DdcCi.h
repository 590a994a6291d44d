#ifndef SCALER_ISP_SIMULATOR_BUS_DDC_CI_H
#define SCALER_ISP_SIMULATOR_BUS_DDC_CI_H

#include <cstdint>
#include <vector>

#include "bus/BusSession.h"

namespace virtual_scaler {

/// The monitor's side of DDC/CI at 0x6E, on the raw bytes of the bus. Its reply is kept in
/// registers.txt until it is read, because the host reads it by another call.
class DdcCi {
  public:
    explicit DdcCi(BusSession &session) : m_session(session) {}

    /// Executes a message of the host: source 0x51, 0x80 | n, n bytes, checksum. Throws Failure
    /// VIRTUAL_BUS_BAD_MESSAGE, without executing it, if it is malformed.
    void Receive(const std::vector<std::uint8_t> &message);

    /// RETURNS the pending reply and removes it; the null message if there is none.
    std::vector<std::uint8_t> TakeReply();

  private:
    void Execute(const std::vector<std::uint8_t> &command);
    void GetFeature(std::uint8_t code);
    void SetFeature(std::uint8_t code, std::uint16_t value);
    void GetCapabilities(std::size_t offset);
    void Reply(std::vector<std::uint8_t> bytes);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
