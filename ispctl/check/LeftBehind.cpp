#include "check/LeftBehind.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <system_error>

#if defined(__APPLE__)
#include <malloc/malloc.h>
#elif defined(__GLIBC__)
#include <malloc.h>
#if __GLIBC_PREREQ(2, 33) // the older mallinfo counts in int, which wraps
#define ISPCTL_HAS_MALLINFO2
#endif
#endif

namespace ispctl::check {
namespace {

constexpr int kWarmUpCalls = 16;
constexpr int kCalls = 16;
constexpr int kSeries = 3;
// No block of the heap is smaller. UNITS: bytes.
constexpr std::size_t kSmallestBlock = 16;

/// The bytes in use on the heap; 0 where the C library does not say.
std::size_t HeapBytes() {
#if defined(__APPLE__)
    malloc_statistics_t statistics{};
    ::malloc_zone_statistics(nullptr, &statistics);
    return statistics.size_in_use;
#elif defined(ISPCTL_HAS_MALLINFO2)
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

std::size_t OpenFiles() {
    std::error_code error;
    const std::filesystem::directory_iterator files("/dev/fd", error);
    return error ? 0 : static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

void Repeat(const std::function<void()> &call, int times) {
    for (int i = 0; i < times; ++i) {
        call();
    }
}

std::size_t Growth(std::size_t before, std::size_t after) {
    return after > before ? (after - before) / kCalls : 0;
}

} // namespace

void CountHeapExactly() {
#if defined(__GLIBC__)
    constexpr const char *kVariable = "GLIBC_TUNABLES";
    const char *given = std::getenv(kVariable);
    const std::string before = given != nullptr ? std::string(given) + ":" : "";
    ::setenv(kVariable, (before + "glibc.malloc.tcache_count=0").c_str(), 1);
#endif
}

LeftBehind MeasureLeftBehind(const std::function<void()> &call) {
    LeftBehind least;
    Repeat(call, kWarmUpCalls);
    // What does not grow in every series is a cache.
    for (int series = 0; series < kSeries; ++series) {
        const std::size_t files = OpenFiles();
        const std::size_t bytes = HeapBytes();
        Repeat(call, kCalls);
        const LeftBehind now{Growth(bytes, HeapBytes()), Growth(files, OpenFiles())};
        least = series == 0 ? now
                            : LeftBehind{std::min(least.bytes, now.bytes),
                                         std::min(least.descriptors, now.descriptors)};
    }
    least.bytes = least.bytes < kSmallestBlock ? 0 : least.bytes;
    return least;
}

} // namespace ispctl::check
