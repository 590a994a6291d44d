#include "edid/EdidBus.h"

#include <array>
#include <filesystem>
#include <fmt/format.h>

#include "LibraryApi.h"
#include "LibraryPaths.h"
#include "Utf8.h"
#include "edid/EdidBlocks.h"

namespace ispctl {
namespace {

// Addresses with the read/write bit, as the communication library expects them.
constexpr unsigned char kEdidSlave = 0xA0;
constexpr unsigned char kSegmentSlave = 0x60;
constexpr std::size_t kBlocksOfSegment = 2;

using Block = std::array<unsigned char, edid::kBlockBytes>;

/// Opens the communication library. RETURNS null on failure, which is reported, with its exit
/// status in status.
LibraryApi::Comm OpenComm(const EdidOptions &options, const LibraryApi &api, Session &session,
                          ExitStatus &status) {
    const std::string path =
        std::filesystem::absolute(options.virtualScaler ? VirtualCommLibraryPath().string()
                                                        : options.comm)
            .string();
    auto wide = WideFromUtf8(path);
    if (!wide) {
        status = session.Fail(kExitUsage, fmt::format("{} is not valid UTF-8", path));
        return nullptr;
    }
    LibraryApi::Comm comm = api.CreateComm();
    if (comm->LoadCommDllFile(wide->data()) != 1) {
        status = session.Fail(kExitNoPlugin,
                              fmt::format("cannot load {} as a communication library", path));
        return nullptr;
    }
    if (const unsigned int code = comm->Initiallize(); code != 0) {
        status = session.Fail(
            kExitFailed,
            fmt::format("cannot initialise the communication library (status 0x{:X})", code));
        return nullptr;
    }
    if (options.channel) {
        const auto channel = static_cast<STRUCT_ENUM_COMM_ID>(*options.channel);
        if (const unsigned int code = comm->SetCommByID(channel); code != 0) {
            status =
                session.Fail(kExitFailed, fmt::format("cannot select channel {} (status 0x{:X})",
                                                      *options.channel, code));
            return nullptr;
        }
    }
    return comm;
}

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
edid::Bytes ReadBlocks(CNxComm &comm, Session &session, ExitStatus &status) {
    edid::Bytes bytes;
    std::size_t declared = 0;
    for (std::size_t number = 0; number <= declared; ++number) {
        Block block{};
        if (const unsigned int code = ReadBlock(comm, number, block); code != 0) {
            status = session.Fail(
                kExitFailed, fmt::format("block {} of the EDID cannot be read (status 0x{:X}): "
                                         "check the cable, the channel and that the display "
                                         "is on",
                                         number, code));
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
    std::string error;
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibraryPath().string() : options.library, error);
    const auto api = library ? LibraryApi::Find(*library, error) : std::nullopt;
    if (!api) {
        status = session.Fail(kExitUsage, error);
        return std::nullopt;
    }
    if (options.virtualScaler) {
        session.streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    const LibraryApi::Comm comm = OpenComm(options, *api, session, status);
    if (!comm) {
        return std::nullopt;
    }
    edid::Input input;
    input.form = edid::Form::Bus;
    input.bytes = ReadBlocks(*comm, session, status);
    return input.bytes.empty() ? std::nullopt : std::optional(std::move(input));
}

} // namespace ispctl
