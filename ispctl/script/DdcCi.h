#ifndef ISPCTL_SCRIPT_DDC_CI_H
#define ISPCTL_SCRIPT_DDC_CI_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ispctl {

/// One request to the display over VESA DDC/CI 1.1: reads or writes a VCP feature.
struct DdcRequest {
    enum class Kind { Get, Set };
    Kind kind = Kind::Get;
    std::uint8_t feature = 0;
    std::uint16_t value = 0; ///< of Set
};

/// A display is the I2C slave 0x37; communication libraries take slaves as 8-bit addresses.
inline constexpr std::uint8_t kDdcSlave = 0x37 << 1;

/// What follows the slave address on the wire: source 0x51, 0x80 + length, the request, checksum.
std::vector<std::uint8_t> DdcMessage(const DdcRequest &request);

/// UNITS: bytes of the answer to Get, from the display's own address on.
inline constexpr std::size_t kDdcReplyBytes = 11;

/// How long a host waits after a request. UNITS: milliseconds.
unsigned DdcWait(DdcRequest::Kind kind);

/// The value of a feature.
struct DdcFeature {
    std::uint16_t current = 0;
    std::uint16_t maximum = 0;
};

/// Reads the answer to Get. RETURNS nothing if it is none, with the reason in error.
std::optional<DdcFeature> ReadDdcReply(std::span<const std::uint8_t> reply, std::uint8_t feature,
                                       std::string &error);

} // namespace ispctl

#endif
