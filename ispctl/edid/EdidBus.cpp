#include "edid/EdidBus.h"

#include <array>
#include <fmt/format.h>

#include "comm/CommSession.h"
#include "edid/EdidBlocks.h"

namespace ispctl {
namespace {

// Addresses with the read/write bit, as the communication library expects them.
constexpr unsigned char kEdidSlave = 0xA0;
constexpr unsigned char kSegmentSlave = 0x60;
constexpr std::size_t kBlocksOfSegment = 2;

using Block = std::array<unsigned char, edid::kBlockBytes>;

/// RETURNS the status of the communication library. A segment of the EEPROM has two blocks; the
/// segment pointer selects all but the first.
unsigned int ReadBlock(CNxComm &comm, std::size_t number, Block &block) {
    const auto segment = static_cast<unsigned char>(number / kBlocksOfSegment);
    const auto offset = static_cast<unsigned char>(number % kBlocksOfSegment * edid::kBlockBytes);
    constexpr auto kLength = static_cast<unsigned short>(edid::kBlockBytes);
    return segment == 0 ? comm.I2CRead(kEdidSlave, offset, kLength, block.data())
                        : comm.I2CReadSegment(kSegmentSlave, segment, kEdidSlave, offset, kLength,
                                              block.data());
}

/// RETURNS the blocks that could be read.
edid::Bytes ReadBlocks(CommSession &bus, Session &session, ExitStatus &status) {
    edid::Bytes bytes;
    std::size_t declared = 0;
    for (std::size_t number = 0; number <= declared; ++number) {
        Block block{};
        if (const unsigned int code = ReadBlock(bus.Comm(), number, block); code != 0) {
            session.json = session.json && bytes.empty(); // else there is a document
            status = session.Fail(
                kExitFailed,
                fmt::format("block {} of the EDID cannot be read ({}): check the cable, the "
                            "channel and that the display is on",
                            number, bus.StatusWords(code)));
            break;
        }
        bytes.insert(bytes.end(), block.begin(), block.end());
        // The override of the block count is in block 1.
        declared = edid::HasBaseBlock(bytes) ? edid::DeclaredExtensions(bytes) : 0;
    }
    return bytes;
}

} // namespace

std::optional<edid::Input> ReadBus(const EdidOptions &options, Session &session,
                                   ExitStatus &status) {
    auto bus = CommSession::Open(options, session, status);
    if (!bus) {
        return std::nullopt;
    }
    edid::Input input;
    input.form = edid::Form::Bus;
    input.bytes = ReadBlocks(*bus, session, status);
    return input.bytes.empty() ? std::nullopt : std::optional(std::move(input));
}

} // namespace ispctl
