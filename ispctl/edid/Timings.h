#ifndef ISPCTL_EDID_TIMINGS_H
#define ISPCTL_EDID_TIMINGS_H

#include <optional>
#include <string>
#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

/// A detailed timing. UNITS: pixels, lines of a field, millimetres
struct Timing {
    unsigned int clock10kHz = 0;
    unsigned int width = 0, widthBlank = 0, hFront = 0, hSync = 0;
    unsigned int lines = 0, linesBlank = 0, vFront = 0, vSync = 0;
    unsigned int widthMm = 0, heightMm = 0;
    bool interlaced = false;
    bool preferred = false;
    std::size_t block = 0; ///< in which it is

    /// Lines of a frame, which has two fields if the timing is interlaced.
    unsigned int Height() const {
        return interlaced ? 2 * lines : lines;
    }
    double ClockMhz() const {
        return clock10kHz / 100.0;
    }
    /// The vertical rate; that of the fields if the timing is interlaced. Nothing if the totals
    /// are 0.
    std::optional<double> RefreshHz() const;
    /// Nothing if the total is 0.
    std::optional<double> LineRateKhz() const;
};

/// RETURNS the timing of 18 bytes. REQUIRES: IsTiming(descriptor).
Timing ReadTiming(View descriptor);

/// RETURNS the detailed timings of the base block and then of all CTA blocks, in their order.
/// REQUIRES: a whole base block.
std::vector<Timing> TimingsOf(View edid);

/// RETURNS "1920 x 1080 interlaced, 60.00 Hz, pixel clock 74.25 MHz".
std::string DescribeTiming(const Timing &timing);

} // namespace ispctl::edid

#endif
