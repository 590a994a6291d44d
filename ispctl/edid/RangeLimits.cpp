#include "edid/RangeLimits.h"

#include <fmt/format.h>

#include "edid/Descriptors.h"

namespace ispctl::edid {
namespace {

constexpr unsigned int kOffset = 255;
constexpr std::uint8_t kSecondGtf = 0x02;
constexpr std::uint8_t kCvt = 0x04;

// Two bits: 2 raises the maximum, 3 also the minimum; 1 is reserved.
void AddOffset(unsigned int bits, unsigned int &min, unsigned int &max) {
    if ((bits & 2U) != 0) {
        max += kOffset;
        min += (bits & 1U) != 0 ? kOffset : 0;
    }
}

// GTF is supported only if the features say so; byte 10 is 0 whether they do or not.
std::string Formula(View edid, View descriptor, bool isVersion14) {
    switch (descriptor[10]) {
    case 0x00:
        return (edid[kFeaturesOffset] & kContinuousFrequency) != 0 ? "default GTF" : "";
    case 0x01:
        return isVersion14 ? "limits only" : "";
    case kSecondGtf:
        return "second GTF";
    case kCvt:
        return isVersion14 ? fmt::format("CVT {}.{}", descriptor[11] >> 4U, descriptor[11] & 15U)
                           : "";
    default:
        return "";
    }
}

} // namespace

std::optional<RangeLimits> RangeLimitsOf(View edid) {
    const auto found = FindDescriptor(edid, kRangeTag);
    if (!found) {
        return std::nullopt;
    }
    const View d = *found;
    const bool isVersion14 = IsVersionAtLeast(edid, 1, 4);
    RangeLimits range;
    range.verticalMinHz = d[5];
    range.verticalMaxHz = d[6];
    range.horizontalMinKhz = d[7];
    range.horizontalMaxKhz = d[8];
    if (d[9] != 0) {
        range.maxPixelClockMhz = d[9] * 10.0;
    }
    range.formula = Formula(edid, d, isVersion14);
    if (isVersion14) {
        AddOffset(d[4] & 3U, range.verticalMinHz, range.verticalMaxHz);
        AddOffset(d[4] >> 2U & 3U, range.horizontalMinKhz, range.horizontalMaxKhz);
        if (d[10] == kCvt && range.maxPixelClockMhz) {
            *range.maxPixelClockMhz -= (d[12] >> 2U) * 0.25;
        }
    }
    return range;
}

std::string DescribeRangeLimits(const RangeLimits &range) {
    std::string text =
        fmt::format("{} to {} Hz, {} to {} kHz", range.verticalMinHz, range.verticalMaxHz,
                    range.horizontalMinKhz, range.horizontalMaxKhz);
    if (range.maxPixelClockMhz) {
        text += fmt::format(", at most {:g} MHz", *range.maxPixelClockMhz);
    }
    return range.formula.empty() ? text : text + ", " + range.formula;
}

} // namespace ispctl::edid
