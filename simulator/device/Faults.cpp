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
constexpr std::uint32_t kLastSlave = 255;
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

using TokenList = std::vector<std::string_view>;

bool TakeFailBank(Faults &faults, const TokenList &words) {
    std::uint32_t bank = 0;
    std::uint32_t code = 0;
    if (words[2] != "code" || !ParseNumber(words[1], kLastBank, bank) ||
        !ParseNumber(words[3], kLargestCode, code) || code == 0) {
        return false;
    }
    faults.failBank[bank] = static_cast<int>(code);
    return true;
}

bool TakeNumber(std::set<std::uint32_t> &numbers, const TokenList &words) {
    std::uint32_t number = 0;
    if (!ParseNumber(words[1], kLastBank, number)) {
        return false;
    }
    numbers.insert(number);
    return true;
}

bool TakeNack(Faults &faults, const TokenList &words) {
    std::uint32_t address = 0;
    if (!ParseNumber(words[1], kLastSlave, address)) {
        return false;
    }
    faults.nack.insert(address & ~1U);
    return true;
}

bool TakeBusy(Faults &faults, const TokenList &words) {
    std::uint32_t address = 0;
    std::uint32_t value = 0;
    std::uint32_t reads = 0;
    if (words[3] != "value" || words[5] != "reads" || !ParseNumber(words[2], 0xFFFFFFFF, address) ||
        !ParseNumber(words[4], 255, value) || !ParseNumber(words[6], 0xFFFFFFFF, reads)) {
        return false;
    }
    faults.busy[{std::string(words[1]), address}] = {static_cast<std::uint8_t>(value), reads};
    return true;
}

/// One kind of fault: its first word, how many words it has, and what takes it.
struct Kind {
    std::string_view word;
    std::size_t words;
    bool (*take)(Faults &faults, const TokenList &words);
};

constexpr Kind kKinds[] = {
    {"fail-bank", 4, TakeFailBank},
    {"flip-bit", 2,
     [](Faults &faults, const TokenList &words) { return TakeNumber(faults.flipBit, words); }},
    {"power-loss", 2,
     [](Faults &faults, const TokenList &words) { return TakeNumber(faults.powerLoss, words); }},
    {"slow", 2,
     [](Faults &faults, const TokenList &words) {
         return ParseNumber(words[1], kLongestDelay, faults.slowMilliseconds);
     }},
    {"refuse-open", 1, [](Faults &faults, const TokenList &) { return faults.refuseOpen = true; }},
    {"nack", 2, TakeNack},
    {"wrong-ddcci-checksum", 1,
     [](Faults &faults, const TokenList &) { return faults.wrongChecksum = true; }},
    {"busy", 7, TakeBusy},
};

/// RETURNS whether the words are a fault, which is then added.
bool TakeFault(Faults &faults, const TokenList &words) {
    for (const Kind &kind : kKinds) {
        if (words[0] == kind.word) {
            return words.size() == kind.words && kind.take(faults, words);
        }
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
