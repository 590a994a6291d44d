#include "device/Faults.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string_view>
#include <vector>

#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

constexpr std::uint32_t kLastBank = 255;
constexpr std::uint32_t kLongestDelay = 60000;
constexpr std::uint32_t kLargestCode = 0x7FFFFFFF;

std::vector<std::string_view> Words(std::string_view line) {
    std::vector<std::string_view> words;
    for (line = Trimmed(line); !line.empty(); line = Trimmed(line)) {
        const std::size_t length = line.find_first_of(" \t");
        words.push_back(line.substr(0, length));
        line.remove_prefix(words.back().size());
    }
    return words;
}

/// RETURNS whether the words are a fault, which is then added.
bool TakeFault(Faults &faults, const std::vector<std::string_view> &words) {
    if (words.size() == 1 && words[0] == "refuse-open") {
        faults.refuseOpen = true;
        return true;
    }
    if (words.size() == 2 && words[0] == "slow") {
        return ParseNumber(words[1], kLongestDelay, faults.slowMilliseconds);
    }
    std::uint32_t bank = 0;
    if (words.size() < 2 || !ParseNumber(words[1], kLastBank, bank)) {
        return false;
    }
    if (words.size() == 2 && words[0] == "flip-bit") {
        faults.flipBit.insert(bank);
        return true;
    }
    if (words.size() == 2 && words[0] == "power-loss") {
        faults.powerLoss.insert(bank);
        return true;
    }
    std::uint32_t code = 0;
    if (words.size() == 4 && words[0] == "fail-bank" && words[2] == "code" &&
        ParseNumber(words[3], kLargestCode, code) && code != 0) {
        faults.failBank[bank] = static_cast<int>(code);
        return true;
    }
    return false;
}

} // namespace

void Faults::Delay() const {
    timespec rest{static_cast<time_t>(slowMilliseconds / 1000),
                  static_cast<long>(slowMilliseconds % 1000) * 1000000L};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

Faults LoadFaults(const std::string &path) {
    Faults faults;
    std::string text;
    if (!ReadText(path, text)) {
        if (errno == ENOENT) {
            return faults;
        }
        throw Failure{VIRTUAL_ISP_BAD_FAULTS, Format("faults.txt cannot be read: %s: %s",
                                                     path.c_str(), std::strerror(errno))};
    }
    ForEachLine(text, [&](int number, std::string_view line) {
        if (!TakeFault(faults, Words(line))) {
            throw Failure{VIRTUAL_ISP_BAD_FAULTS,
                          Format("faults.txt, line %d cannot be understood: %s", number,
                                 std::string(line).c_str())};
        }
    });
    return faults;
}

} // namespace virtual_scaler
