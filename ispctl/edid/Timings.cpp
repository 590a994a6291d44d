#include "edid/Timings.h"

#include <fmt/format.h>

#include "edid/Descriptors.h"
#include "edid/cta/CtaBlock.h"

namespace ispctl::edid {
namespace {

constexpr std::uint8_t kInterlaced = 0x80;     ///< byte 17 of a timing
constexpr std::uint8_t kFirstPreferred = 0x02; ///< byte 24 of the base block

unsigned int HighBits(unsigned int byte, unsigned int shift, unsigned int count) {
    return byte >> shift & ((1U << count) - 1);
}

// Before version 1.4 a bit says whether the first timing is preferred; from 1.4 on it always is.
bool IsFirstPreferred(View edid) {
    return IsVersionAtLeast(edid, 1, 4) || (edid[kFeaturesOffset] & kFirstPreferred) != 0;
}

} // namespace

std::optional<double> Timing::RefreshHz() const {
    const double total = double(width + widthBlank) * (lines + linesBlank + (interlaced ? 0.5 : 0));
    return width + widthBlank > 0 && lines + linesBlank > 0
               ? std::optional(clock10kHz * 1e4 / total)
               : std::nullopt;
}

std::optional<double> Timing::LineRateKhz() const {
    return width + widthBlank > 0 ? std::optional(clock10kHz * 10.0 / (width + widthBlank))
                                  : std::nullopt;
}

Timing ReadTiming(View d) {
    Timing timing;
    timing.clock10kHz = Word(d, 0);
    timing.width = d[2] | HighBits(d[4], 4, 4) << 8U;
    timing.widthBlank = d[3] | HighBits(d[4], 0, 4) << 8U;
    timing.lines = d[5] | HighBits(d[7], 4, 4) << 8U;
    timing.linesBlank = d[6] | HighBits(d[7], 0, 4) << 8U;
    timing.hFront = d[8] | HighBits(d[11], 6, 2) << 8U;
    timing.hSync = d[9] | HighBits(d[11], 4, 2) << 8U;
    timing.vFront = HighBits(d[10], 4, 4) | HighBits(d[11], 2, 2) << 4U;
    timing.vSync = HighBits(d[10], 0, 4) | HighBits(d[11], 0, 2) << 4U;
    timing.widthMm = d[12] | HighBits(d[14], 4, 4) << 8U;
    timing.heightMm = d[13] | HighBits(d[14], 0, 4) << 8U;
    timing.interlaced = (d[17] & kInterlaced) != 0;
    return timing;
}

std::vector<Timing> TimingsOf(View edid) {
    std::vector<Timing> timings;
    const auto descriptors = DescriptorsOf(edid);
    for (std::size_t i = 0; i < descriptors.size(); ++i) {
        if (IsTiming(descriptors[i])) {
            timings.push_back(ReadTiming(descriptors[i]));
            timings.back().preferred = i == 0 && IsFirstPreferred(edid);
        }
    }
    for (std::size_t number = 1; number < WholeBlocks(edid); ++number) {
        const View block = BlockOf(edid, number);
        if (block[0] != kCtaTag) {
            continue;
        }
        for (const View descriptor : CtaTimingSlots(block)) {
            timings.push_back(ReadTiming(descriptor));
            timings.back().block = number;
        }
    }
    return timings;
}

std::string DescribeTiming(const Timing &timing) {
    const auto rate = timing.RefreshHz();
    return fmt::format("{} x {}{}, {}, pixel clock {:.2f} MHz", timing.width, timing.Height(),
                       timing.interlaced ? " interlaced" : "",
                       rate ? fmt::format("{:.2f} Hz", *rate) : "no rate", timing.ClockMhz());
}

} // namespace ispctl::edid
