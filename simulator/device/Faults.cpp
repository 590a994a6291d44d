#include "device/Faults.h"

#include <cerrno>
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

std::vector<std::string_view> Tokens(std::string_view line) {
    std::vector<std::string_view> tokens;
    for (line = Trimmed(line); !line.empty(); line = Trimmed(line)) {
        const std::size_t length = line.find_first_of(" \t");
        tokens.push_back(line.substr(0, length));
        line.remove_prefix(tokens.back().size());
    }
    return tokens;
}

using TokenList = std::vector<std::string_view>;

bool ParseFailBank(Faults &faults, const TokenList &tokens) {
    std::uint32_t bank = 0;
    std::uint32_t code = 0;
    if (tokens[2] != "code" || !ParseNumber(tokens[1], kLastBank, bank) ||
        !ParseNumber(tokens[3], kLargestCode, code) || code == 0) {
        return false;
    }
    faults.failBank[bank] = static_cast<int>(code);
    return true;
}

bool ParseBank(std::set<std::uint32_t> &numbers, const TokenList &tokens) {
    std::uint32_t number = 0;
    if (!ParseNumber(tokens[1], kLastBank, number)) {
        return false;
    }
    numbers.insert(number);
    return true;
}

bool ParseNack(Faults &faults, const TokenList &tokens) {
    std::uint32_t address = 0;
    if (!ParseNumber(tokens[1], kLastSlave, address)) {
        return false;
    }
    faults.nack.insert(address & ~1U);
    return true;
}

bool ParseBusy(Faults &faults, const TokenList &tokens) {
    std::uint32_t address = 0;
    std::uint32_t value = 0;
    std::uint32_t reads = 0;
    if (tokens[3] != "value" || tokens[5] != "reads" ||
        !ParseNumber(tokens[2], 0xFFFFFFFF, address) || !ParseNumber(tokens[4], 255, value) ||
        !ParseNumber(tokens[6], 0xFFFFFFFF, reads)) {
        return false;
    }
    faults.busy[{std::string(tokens[1]), address}] = {static_cast<std::uint8_t>(value), reads};
    return true;
}

/// One kind of fault: its keyword, its number of tokens, and its parser.
struct Kind {
    std::string_view keyword;
    std::size_t tokens;
    bool (*parse)(Faults &faults, const TokenList &tokens);
};

constexpr Kind kKinds[] = {
    {"fail-bank", 4, ParseFailBank},
    {"flip-bit", 2,
     [](Faults &faults, const TokenList &tokens) { return ParseBank(faults.flipBit, tokens); }},
    {"power-loss", 2,
     [](Faults &faults, const TokenList &tokens) { return ParseBank(faults.powerLoss, tokens); }},
    {"slow", 2,
     [](Faults &faults, const TokenList &tokens) {
         return ParseNumber(tokens[1], kLongestDelay, faults.slowMilliseconds);
     }},
    {"refuse-open", 1, [](Faults &faults, const TokenList &) { return faults.refuseOpen = true; }},
    {"nack", 2, ParseNack},
    {"wrong-ddcci-checksum", 1,
     [](Faults &faults, const TokenList &) { return faults.wrongChecksum = true; }},
    {"busy", 7, ParseBusy},
};

/// Adds a fault. RETURNS false if the tokens are not a valid fault.
bool ParseFault(Faults &faults, const TokenList &tokens) {
    for (const Kind &kind : kKinds) {
        if (tokens[0] == kind.keyword) {
            return tokens.size() == kind.tokens && kind.parse(faults, tokens);
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
        throw Failure{VIRTUAL_ISP_BAD_FAULTS,
                      Format("faults.txt cannot be read: %s: %s", path.c_str(), ErrorText(errno))};
    }
    ForEachLine(text, [&](int number, std::string_view line) {
        if (!ParseFault(faults, Tokens(line))) {
            throw Failure{VIRTUAL_ISP_BAD_FAULTS,
                          Format("faults.txt, line %d cannot be understood: %s", number,
                                 std::string(line).c_str())};
        }
    });
    return faults;
}

} // namespace virtual_scaler
