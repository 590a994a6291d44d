#include "edid/StandardTimings.h"

#include <fmt/format.h>

#include "edid/Descriptors.h"

namespace ispctl::edid {
namespace {

enum class List { Base, More };

struct EstablishedRow {
    List list;
    std::uint8_t byte;
    std::uint8_t bit;
    const char *timing;
};
constexpr EstablishedRow kEstablishedRows[] = {
#define ISPCTL_ESTABLISHED(LIST, BYTE, BIT, TIMING) {List::LIST, BYTE, BIT, TIMING},
#include "edid/established_timings.def"
};

constexpr std::size_t kStandardTimingsOffset = 38;
constexpr std::size_t kStandardTimings = 8;
constexpr std::size_t kStandardTimingsOfDescriptor = 6;

struct Aspect {
    unsigned int width, height;
};

// Before version 1.3 the first one was 1:1.
constexpr Aspect kAspects[] = {{16, 10}, {4, 3}, {5, 4}, {16, 9}};

void AppendEstablished(View bytes, List list, std::vector<std::string> &timings) {
    for (const EstablishedRow &row : kEstablishedRows) {
        if (row.list == list && (bytes[row.byte] >> row.bit & 1U) != 0) {
            timings.emplace_back(row.timing);
        }
    }
}

void AppendStandard(View edid, View pairs, std::vector<std::string> &timings) {
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        const unsigned int low = pairs[i];
        const unsigned int high = pairs[i + 1];
        if (low == 0 || (low == 1 && high == 1)) {
            continue; // not used
        }
        Aspect aspect = kAspects[high >> 6U];
        if (high >> 6U == 0 && !IsVersionAtLeast(edid, 1, 3)) {
            aspect = {1, 1};
        }
        const unsigned int width = (low + 31) * 8;
        timings.push_back(fmt::format("{} x {} at {} Hz", width,
                                      width * aspect.height / aspect.width, 60 + (high & 0x3FU)));
    }
}

} // namespace

std::vector<std::string> EstablishedTimingsOf(View edid) {
    std::vector<std::string> timings;
    AppendEstablished(edid, List::Base, timings);
    if (const auto more = FindDescriptor(edid, kEstablishedTimingsTag)) {
        AppendEstablished(*more, List::More, timings);
    }
    return timings;
}

std::vector<std::string> StandardTimingsOf(View edid) {
    std::vector<std::string> timings;
    AppendStandard(edid, edid.subspan(kStandardTimingsOffset, 2 * kStandardTimings), timings);
    if (const auto more = FindDescriptor(edid, kStandardTimingsTag)) {
        AppendStandard(edid, more->subspan(5, 2 * kStandardTimingsOfDescriptor), timings);
    }
    return timings;
}

} // namespace ispctl::edid
