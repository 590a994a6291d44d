#include "edid/cta/CtaBlock.h"

#include <algorithm>

#include "edid/Descriptors.h"

namespace ispctl::edid {
namespace {

constexpr std::size_t kFirstDataBlock = 4;
constexpr unsigned int kRevisionWithDataBlocks = 3;

} // namespace

bool IsCtaOffsetValid(View block) {
    return block[2] == 0 || (block[2] >= kFirstDataBlock && block[2] <= kChecksumOffset);
}

std::vector<DataBlock> DataBlocksOf(View block) {
    std::vector<DataBlock> blocks;
    if (block[1] < kRevisionWithDataBlocks || !IsCtaOffsetValid(block)) {
        return blocks;
    }
    const std::size_t end = block[2];
    for (std::size_t offset = kFirstDataBlock; offset < end;) {
        const std::size_t length = block[offset] & 0x1FU;
        DataBlock found;
        found.tag = block[offset] >> 5U;
        found.isWhole = offset + 1 + length <= end;
        found.payload = block.subspan(offset + 1, std::min(length, end - offset - 1));
        if (found.tag == kExtendedTag) {
            found.isWhole = found.isWhole && !found.payload.empty();
            found.extendedTag = found.payload.empty() ? kNoExtendedTag : found.payload[0];
            found.payload = found.payload.subspan(found.payload.empty() ? 0 : 1);
        }
        blocks.push_back(found);
        offset += 1 + length;
    }
    return blocks;
}

std::vector<View> CtaTimingSlots(View block) {
    std::vector<View> slots;
    if (block[2] < kFirstDataBlock) {
        return slots;
    }
    for (std::size_t offset = block[2]; offset + kDescriptorBytes <= kChecksumOffset;
         offset += kDescriptorBytes) {
        const View slot = block.subspan(offset, kDescriptorBytes);
        if (!IsTiming(slot)) {
            break;
        }
        slots.push_back(slot);
    }
    return slots;
}

} // namespace ispctl::edid
