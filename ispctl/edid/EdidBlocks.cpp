#include "edid/EdidBlocks.h"

#include <fmt/format.h>

#include "edid/cta/CtaBlock.h"

namespace ispctl::edid {
namespace {

struct ExtensionKind {
    std::uint8_t tag;
    const char *kind;
};

constexpr ExtensionKind kExtensionKinds[] = {
    {0x01, "LCD timings"},
    {kCtaTag, "CTA-861"},
    {0x10, "video timing block (VTB)"},
    {0x20, "EDID 2.0"},
    {0x30, "colour information"},
    {0x40, "display information (DI)"},
    {0x50, "localized strings (LS)"},
    {0x60, "microdisplay interface (MI)"},
    {0x70, "DisplayID"},
    {0xA7, "display transfer characteristics (DTCDB), 0xA7"},
    {0xAF, "display transfer characteristics (DTCDB), 0xAF"},
    {0xBF, "display transfer characteristics (DTCDB), 0xBF"},
    {0xF0, "block map"},
    {0xFF, "manufacturer's own"},
};

std::string KindOf(std::uint8_t tag) {
    for (const ExtensionKind &row : kExtensionKinds) {
        if (row.tag == tag) {
            return row.kind;
        }
    }
    return fmt::format("tag 0x{:02X}", tag);
}

} // namespace

std::vector<Block> BlocksOf(View edid) {
    std::vector<Block> blocks;
    for (std::size_t number = 0; number < WholeBlocks(edid); ++number) {
        const View bytes = BlockOf(edid, number);
        Block block;
        block.tag = number == 0 ? std::uint8_t{0} : bytes[0];
        block.kind = number == 0 ? "base" : KindOf(bytes[0]);
        block.checksum = bytes[kChecksumOffset];
        block.expected = ExpectedChecksum(bytes);
        blocks.push_back(block);
    }
    return blocks;
}

unsigned int DeclaredExtensions(View edid) {
    const unsigned int declared = edid[kExtensionCountOffset];
    if (declared == 0 || WholeBlocks(edid) < 2 || BlockOf(edid, 1)[0] != kCtaTag) {
        return declared;
    }
    for (const DataBlock &block : DataBlocksOf(BlockOf(edid, 1))) {
        if (block.IsExtended(kBlockCountOverrideTag) && !block.payload.empty() &&
            block.payload[0] != 0) {
            return block.payload[0];
        }
    }
    return declared;
}

} // namespace ispctl::edid
