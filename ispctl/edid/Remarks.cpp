#include <algorithm>
#include <cmath>

#include "edid/BaseFacts.h"
#include "edid/Descriptors.h"
#include "edid/EdidBlocks.h"
#include "edid/Problems.h"
#include "edid/RangeLimits.h"
#include "edid/Timings.h"
#include "edid/cta/CtaBlock.h"

namespace ispctl::edid {
namespace {

// Rates of a timing and limits are rounded differently.
constexpr double kRateTolerance = 1.0;
constexpr std::size_t kTextOffset = 5;

bool AreAll(View bytes, std::uint8_t value) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [value](std::uint8_t byte) { return byte == value; });
}

/// What a reader gets past the end of an EEPROM's content: nothing, or the beginning again.
void CheckEnd(View edid, Findings &remarks) {
    const std::size_t declared = DeclaredExtensions(edid);
    if (declared + 1 >= WholeBlocks(edid)) {
        return;
    }
    const View rest = edid.subspan((declared + 1) * kBlockBytes);
    const View first = edid.first(std::min(rest.size(), edid.size() - rest.size()));
    if (AreAll(rest, 0x00) || AreAll(rest, 0xFF)) {
        remarks.push_back(MakeFinding(FindingId::ReadTooFar, declared + 1,
                                      rest[0] == 0 ? "only zero bytes" : "only bytes 0xFF"));
    } else if (std::equal(first.begin(), first.end(), rest.begin())) {
        remarks.push_back(
            MakeFinding(FindingId::ReadTooFar, declared + 1, "the first bytes again"));
    }
}

void CheckIdentification(View edid, Findings &remarks) {
    if (edid[18] != 1 || edid[19] > 4) {
        remarks.push_back(MakeFinding(FindingId::Version, 0, edid[18], edid[19]));
    }
    if (ManufacturerOf(edid).find('?') != std::string::npos) {
        remarks.push_back(MakeFinding(FindingId::Manufacturer, 0));
    }
    const MadeIn made = MadeInOf(edid);
    if (made.year && !made.week && edid[16] != 0) {
        remarks.push_back(MakeFinding(FindingId::Week, 0, edid[16]));
    }
}

/// Version 1.3 requires what 1.4 leaves open; only of displays with continuous frequency does 1.4
/// require range limits.
void CheckRequired(View edid, Findings &remarks) {
    if (!IsTiming(DescriptorsOf(edid)[0])) {
        remarks.push_back(MakeFinding(FindingId::FirstDescriptor, 0));
    }
    const auto require = [&](bool isThere, FindingId id, const char *condition = "") {
        if (!isThere) {
            remarks.push_back(MakeFinding(id, 0, edid[18], edid[19], condition));
        }
    };
    if (IsVersionAtLeast(edid, 1, 4)) {
        require((edid[kFeaturesOffset] & kContinuousFrequency) == 0 ||
                    FindDescriptor(edid, kRangeTag).has_value(),
                FindingId::MissingRange, " of a display with continuous frequency");
        return;
    }
    if (!IsVersionAtLeast(edid, 1, 3)) {
        return;
    }
    require((edid[kFeaturesOffset] & 2U) != 0, FindingId::NotPreferred);
    require(FindDescriptor(edid, kNameTag).has_value(), FindingId::MissingName);
    require(FindDescriptor(edid, kRangeTag).has_value(), FindingId::MissingRange);
}

void CheckText(View text, Findings &remarks) {
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](std::uint8_t byte) { return byte == '\n' || byte == 0; });
    if (std::any_of(text.begin(), end,
                    [](std::uint8_t byte) { return byte < 0x20 || byte > 0x7E; })) {
        remarks.push_back(MakeFinding(FindingId::TextCharacter, 0));
    }
    if (end == text.end()) {
        return;
    }
    if (*end == 0) {
        remarks.push_back(MakeFinding(FindingId::TextEnd, 0));
    } else if (std::any_of(end + 1, text.end(), [](std::uint8_t byte) { return byte != ' '; })) {
        remarks.push_back(MakeFinding(FindingId::TextPadding, 0));
    }
}

void CheckDescriptors(View edid, Findings &remarks) {
    for (const View descriptor : DescriptorsOf(edid)) {
        const std::uint8_t tag = descriptor[3];
        if (!IsTiming(descriptor) && (tag == kNameTag || tag == kSerialTag || tag == kTextTag)) {
            CheckText(descriptor.subspan(kTextOffset), remarks);
        }
    }
    for (std::size_t offset = 38; offset < 54; offset += 2) {
        if (edid[offset] == 0) {
            remarks.push_back(
                MakeFinding(FindingId::StandardUnused, 0, edid[offset], edid[offset + 1]));
            break; // one remark is enough for all of them
        }
    }
}

bool IsOutside(const Timing &timing, const RangeLimits &range) {
    const double rate = timing.RefreshHz().value_or(0);
    const double lineRate = timing.LineRateKhz().value_or(0);
    return rate + kRateTolerance < range.verticalMinHz ||
           rate - kRateTolerance > range.verticalMaxHz ||
           lineRate + kRateTolerance < range.horizontalMinKhz ||
           lineRate - kRateTolerance > range.horizontalMaxKhz ||
           (range.maxPixelClockMhz && timing.ClockMhz() > *range.maxPixelClockMhz);
}

void CheckTimings(View edid, Findings &remarks) {
    const auto range = RangeLimitsOf(edid);
    if (range && (range->verticalMinHz > range->verticalMaxHz ||
                  range->horizontalMinKhz > range->horizontalMaxKhz)) {
        remarks.push_back(MakeFinding(FindingId::RangeOrder, 0));
    }
    for (const Timing &timing : TimingsOf(edid)) {
        const auto add = [&](FindingId id) {
            remarks.push_back(MakeFinding(id, timing.block, timing.width, timing.Height(),
                                          timing.RefreshHz().value_or(0)));
        };
        if (timing.width == 0 || timing.lines == 0) {
            add(FindingId::EmptyTiming);
            continue;
        }
        if (timing.hFront + timing.hSync > timing.widthBlank ||
            timing.vFront + timing.vSync > timing.linesBlank) {
            add(FindingId::SyncOutside);
        }
        if (range && timing.block == 0 && IsOutside(timing, *range)) {
            add(FindingId::OutsideRange);
        }
    }
}

void CheckOverride(const std::vector<DataBlock> &blocks, std::size_t number, Findings &remarks) {
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!blocks[i].IsExtended(kBlockCountOverrideTag)) {
            continue;
        }
        if (i != 0 || number != 1) {
            remarks.push_back(MakeFinding(FindingId::OverridePlace, number));
        }
        if (!blocks[i].payload.empty() && blocks[i].payload[0] == 0) {
            remarks.push_back(MakeFinding(FindingId::OverrideCount, number));
        }
    }
}

void CheckCta(View edid, Findings &remarks) {
    for (std::size_t number = 1; number < WholeBlocks(edid); ++number) {
        const View block = BlockOf(edid, number);
        if (block[0] != kCtaTag) {
            continue;
        }
        if (!IsCtaOffsetValid(block)) {
            remarks.push_back(MakeFinding(FindingId::CtaOffset, number, block[2]));
        }
        const auto blocks = DataBlocksOf(block);
        if (std::any_of(blocks.begin(), blocks.end(),
                        [](const DataBlock &one) { return !one.isWhole; })) {
            remarks.push_back(MakeFinding(FindingId::CtaDataBlock, number));
        }
        CheckOverride(blocks, number, remarks);
    }
}

} // namespace

Findings RemarksOf(View edid) {
    Findings remarks;
    CheckEnd(edid, remarks);
    CheckIdentification(edid, remarks);
    CheckRequired(edid, remarks);
    CheckDescriptors(edid, remarks);
    CheckTimings(edid, remarks);
    CheckCta(edid, remarks);
    return remarks;
}

} // namespace ispctl::edid
