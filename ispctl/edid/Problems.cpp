#include "edid/Problems.h"

#include "edid/EdidBlocks.h"

namespace ispctl::edid {

Findings ProblemsOf(View edid) {
    Findings problems;
    if (!edid.empty() && !HasHeader(edid)) {
        problems.push_back(MakeFinding(FindingId::Header, 0));
    }
    if (edid.empty() || edid.size() % kBlockBytes != 0) {
        problems.push_back(MakeFinding(FindingId::Size, std::nullopt, edid.size()));
    }
    const auto blocks = BlocksOf(edid);
    for (std::size_t number = 0; number < blocks.size(); ++number) {
        const Block &block = blocks[number];
        if (block.checksum != block.expected) {
            const auto sum = static_cast<std::uint8_t>(block.checksum - block.expected);
            problems.push_back(
                MakeFinding(FindingId::Checksum, number, block.checksum, block.expected, sum));
        }
    }
    if (!blocks.empty() && HasBaseBlock(edid)) {
        const unsigned int declared = DeclaredExtensions(edid);
        if (declared != blocks.size() - 1) {
            const bool isOverride = declared != edid[kExtensionCountOffset];
            problems.push_back(MakeFinding(FindingId::ExtensionCount, 0,
                                           isOverride ? "block-count override" : "header", declared,
                                           declared == 1 ? "" : "s", blocks.size() - 1));
        }
    }
    return problems;
}

} // namespace ispctl::edid
