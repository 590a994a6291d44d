#include "UtcTime.h"

#include <chrono>
#include <ctime>
#include <fmt/format.h>

namespace ispctl {

std::string UtcTime() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
    const auto part = duration_cast<milliseconds>(now - floor<std::chrono::seconds>(now));
    std::tm time{};
    ::gmtime_r(&seconds, &time);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", time.tm_year + 1900,
                       time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                       part.count());
}

} // namespace ispctl
