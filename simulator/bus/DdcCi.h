#ifndef SCALER_ISP_SIMULATOR_BUS_DDC_CI_H
#define SCALER_ISP_SIMULATOR_BUS_DDC_CI_H

#include <cstdint>
#include <vector>

#include "bus/BusSession.h"

namespace virtual_scaler {

/// The monitor's side of DDC/CI at 0x6E, on the bytes of the wire. Its answer waits in
/// registers.txt until it is read.
class DdcCi {
  public:
    explicit DdcCi(BusSession &session) : m_session(session) {}

    /// A message of the host: source 0x51, 0x80 | n, n bytes, checksum. Throws Failure
    /// VIRTUAL_BUS_BAD_MESSAGE unless it is whole; it is not carried out then.
    void Take(const std::vector<std::uint8_t> &message);

    /// The answer, or the null message where none waits; it is gone then.
    std::vector<std::uint8_t> Answer();

  private:
    void Carry(const std::vector<std::uint8_t> &command);
    void GetFeature(std::uint8_t code);
    void SetFeature(std::uint8_t code, std::uint16_t value);
    void GetCapabilities(std::size_t offset);
    void Reply(std::vector<std::uint8_t> bytes);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
