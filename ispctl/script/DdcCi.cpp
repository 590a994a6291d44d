#include "script/DdcCi.h"

#include <fmt/format.h>
#include <functional>
#include <numeric>

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kHost = 0x51;
constexpr std::uint8_t kLengthMark = 0x80;
constexpr std::uint8_t kGetFeature = 0x01;
constexpr std::uint8_t kFeatureReply = 0x02;
constexpr std::uint8_t kSetFeature = 0x03;
// The address that a reply is checked with, although the host is no slave.
constexpr std::uint8_t kVirtualHost = 0x50;

std::uint8_t Xor(std::uint8_t address, std::span<const std::uint8_t> bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), address, std::bit_xor<std::uint8_t>());
}

Bytes WithChecksum(Bytes message) {
    message.push_back(Xor(kDdcSlave, message));
    return message;
}

std::uint16_t Word(std::uint8_t high, std::uint8_t low) {
    return static_cast<std::uint16_t>(high << 8 | low);
}

} // namespace

Bytes DdcMessage(const DdcRequest &request) {
    if (request.kind == DdcRequest::Kind::Get) {
        return WithChecksum({kHost, kLengthMark | 2, kGetFeature, request.feature});
    }
    return WithChecksum({kHost, kLengthMark | 4, kSetFeature, request.feature,
                         static_cast<std::uint8_t>(request.value >> 8),
                         static_cast<std::uint8_t>(request.value & 0xFF)});
}

unsigned DdcWait(DdcRequest::Kind kind) {
    return kind == DdcRequest::Kind::Get ? 40 : 50;
}

std::optional<DdcFeature> ReadDdcReply(std::span<const std::uint8_t> reply, std::uint8_t feature,
                                       std::string &error) {
    constexpr std::uint8_t kFeatureLength = 8;
    if (reply.size() < 3 || reply[0] != kDdcSlave || (reply[1] & kLengthMark) == 0) {
        error = "the display sends no DDC/CI answer";
        return std::nullopt;
    }
    const std::size_t length = reply[1] & 0x7FU;
    const std::size_t checksumAt = 2 + length;
    if (checksumAt >= reply.size() ||
        Xor(kVirtualHost, reply.first(checksumAt)) != reply[checksumAt]) {
        error = "the answer of the display has a wrong checksum";
        return std::nullopt;
    }
    if (length == 0) {
        error = "the display is not ready: it sends an empty answer";
        return std::nullopt;
    }
    if (length != kFeatureLength || reply[2] != kFeatureReply || reply[4] != feature) {
        error = "the answer of the display is to another request";
        return std::nullopt;
    }
    if (reply[3] != 0) {
        error = fmt::format("the display does not support the VCP feature 0x{:02X}", feature);
        return std::nullopt;
    }
    return DdcFeature{Word(reply[8], reply[9]), Word(reply[6], reply[7])};
}

} // namespace ispctl
