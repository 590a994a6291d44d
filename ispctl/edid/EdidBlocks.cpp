#include "edid/EdidBlocks.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>

namespace ispctl {
namespace {

using Span = std::span<const std::uint8_t>;

constexpr std::size_t kBlockBytes = 128;
constexpr std::size_t kChecksumOffset = 127;
constexpr std::size_t kExtensionCountOffset = 126;
constexpr std::uint8_t kHeader[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t kFirstDescriptor = 54;
constexpr std::size_t kDescriptorBytes = 18;
constexpr std::size_t kDescriptors = 4;
constexpr std::uint8_t kNameTag = 0xFC;
constexpr int kFirstYear = 1990;
constexpr std::uint8_t kModelYear = 0xFF; ///< in the byte of the week

void CheckBlockChecksum(Span block, std::size_t number, std::vector<std::string> &problems) {
    const unsigned int sum = std::accumulate(block.begin(), block.begin() + kChecksumOffset, 0U);
    const unsigned int expected = (256 - sum % 256) % 256;
    if (block[kChecksumOffset] != expected) {
        problems.push_back(fmt::format(
            "block {}: checksum 0x{:02X}, expected 0x{:02X} (the sum of the 128 bytes is "
            "0x{:02X}, not 0)",
            number, block[kChecksumOffset], expected, (sum + block[kChecksumOffset]) % 256));
    }
}

unsigned int ReadLittleEndian(Span bytes, std::size_t offset, std::size_t count) {
    unsigned int value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value << 8U | bytes[offset + i];
    }
    return value;
}

// Three letters of five bits each (1 is A) in two bytes, big-endian.
std::string Manufacturer(Span edid) {
    const unsigned int packed = edid[8] * 256U + edid[9];
    std::string letters;
    for (const unsigned int shift : {10U, 5U, 0U}) {
        const unsigned int letter = packed >> shift & 0x1FU;
        letters += letter >= 1 && letter <= 26 ? static_cast<char>('A' + letter - 1) : '?';
    }
    return letters;
}

std::string Date(Span edid) {
    const int year = kFirstYear + edid[17];
    if (edid[16] == kModelYear) {
        return fmt::format("model year {}", year);
    }
    return edid[16] == 0 ? fmt::format("year {}", year)
                         : fmt::format("week {} of {}", edid[16], year);
}

// The first descriptor of 18 bytes; it is not a timing if the pixel clock is 0.
std::string PreferredTiming(Span edid) {
    const Span timing = edid.subspan(kFirstDescriptor, kDescriptorBytes);
    const unsigned int clock = ReadLittleEndian(timing, 0, 2); // UNITS: 10 kHz
    if (clock == 0) {
        return "none";
    }
    const auto pair = [&](std::size_t low) { // active and blanking, their high bits in one byte
        const unsigned int high = timing[low + 2];
        return std::pair(timing[low] | (high & 0xF0U) << 4U, timing[low + 1] | (high & 0x0FU)
                                                                                   << 8U);
    };
    const auto [width, widthBlank] = pair(2);
    const auto [height, heightBlank] = pair(5);
    const double total = double(width + widthBlank) * (height + heightBlank);
    const bool interlaced = (timing[17] & 0x80U) != 0;
    return fmt::format("{} x {}{}, {:.2f} Hz, pixel clock {:.2f} MHz", width, height,
                       interlaced ? " interlaced" : "", total > 0 ? clock * 1e4 / total : 0,
                       clock / 100.0);
}

std::string Name(Span edid) {
    for (std::size_t i = 0; i < kDescriptors; ++i) {
        const Span descriptor =
            edid.subspan(kFirstDescriptor + i * kDescriptorBytes, kDescriptorBytes);
        if (ReadLittleEndian(descriptor, 0, 3) == 0 && descriptor[3] == kNameTag) {
            std::string name;
            for (const std::uint8_t c : descriptor.subspan(5)) {
                if (c == '\n') {
                    break;
                }
                name += c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '?';
            }
            return name.substr(0, name.find_last_not_of(' ') + 1);
        }
    }
    return "";
}

std::string ExtensionName(std::uint8_t tag) {
    switch (tag) {
    case 0x02:
        return "CTA-861";
    case 0x10:
        return "video timing";
    case 0x40:
        return "display information";
    case 0x50:
        return "localized strings";
    case 0x70:
        return "DisplayID";
    case 0xF0:
        return "block map";
    default:
        return fmt::format("tag 0x{:02X}", tag);
    }
}

} // namespace

std::vector<std::string> EdidProblems(Span edid) {
    std::vector<std::string> problems;
    if (edid.empty() || edid.size() % kBlockBytes != 0) {
        problems.push_back(fmt::format("size {} is not a multiple of 128", edid.size()));
    }
    if (edid.size() >= sizeof kHeader &&
        !std::equal(std::begin(kHeader), std::end(kHeader), edid.begin())) {
        problems.push_back("block 0: the header is not 00 FF FF FF FF FF FF 00");
    }
    const std::size_t blocks = edid.size() / kBlockBytes;
    for (std::size_t number = 0; number < blocks; ++number) {
        CheckBlockChecksum(edid.subspan(number * kBlockBytes, kBlockBytes), number, problems);
    }
    if (blocks > 0 && edid[kExtensionCountOffset] != blocks - 1) {
        problems.push_back(fmt::format(
            "block 0: header declares {} extension block{}, file contains {}",
            edid[kExtensionCountOffset], edid[kExtensionCountOffset] == 1 ? "" : "s", blocks - 1));
    }
    return problems;
}

std::string EdidFacts(Span edid) {
    std::string text;
    const auto line = [&](const char *name, const std::string &value) {
        text += fmt::format("{:<17} {}\n", name, value);
    };
    line("manufacturer", Manufacturer(edid));
    line("product", fmt::format("0x{:04X}", ReadLittleEndian(edid, 10, 2)));
    line("serial number", fmt::format("0x{:08X}", ReadLittleEndian(edid, 12, 4)));
    line("made", Date(edid));
    line("EDID version", fmt::format("{}.{}", edid[18], edid[19]));
    line("preferred timing", PreferredTiming(edid));
    const std::string name = Name(edid);
    line("name", name.empty() ? "none" : name);
    line("extension blocks", fmt::format("{}", edid[kExtensionCountOffset]));
    for (std::size_t offset = kBlockBytes; offset < edid.size(); offset += kBlockBytes) {
        line(fmt::format("  block {}", offset / kBlockBytes).c_str(), ExtensionName(edid[offset]));
    }
    return text;
}

} // namespace ispctl
