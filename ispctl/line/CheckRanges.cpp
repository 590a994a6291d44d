#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>

#include "line/NumberText.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

constexpr std::uint64_t kFlashEnd = 0x1000000;
constexpr std::uint64_t kLongestVersion = 256;

/// The number that the library reads; nothing if it reads none, or a finding is about it already.
std::optional<std::uint64_t> NumberOf(const LineUnderCheck &line, std::string_view name,
                                      std::optional<std::uint64_t> byDefault = std::nullopt) {
    const GivenArgument *given = line.Find(name);
    if (given == nullptr) {
        return byDefault;
    }
    const NumberText number = ReadNumberText(*given->value);
    return number.isComplete && !line.HasFatal(*given)
               ? std::optional<std::uint64_t>(static_cast<std::uint32_t>(number.stored))
               : std::nullopt;
}

void CheckVersion(LineUnderCheck &line) {
    const auto address = NumberOf(line, "veraddr");
    const auto total = NumberOf(line, "totalverlen");
    const auto major = NumberOf(line, "majorverlen");
    const auto sub = NumberOf(line, "subverlen", 0);
    if (!line.Holds("flash") || !address || !total || !major || !sub) {
        return;
    }
    if (*major + *sub > kLongestVersion) {
        const GivenArgument &given = *line.Find(*major >= *sub ? "majorverlen" : "subverlen");
        line.Report("wrong-version-range", given, Underline::Value,
                    {.allowed = fmt::format("fewer bytes for {}", given.typed),
                     .example = ExampleOf(*given.option),
                     .detail = fmt::format("major and sub version have {} bytes together, a whole "
                                           "version has at most {}",
                                           *major + *sub, kLongestVersion)});
    } else if (*major + *sub > *total) {
        const GivenArgument &given = *line.Find("totalverlen");
        line.Report("wrong-version-range", given, Underline::Value,
                    {.allowed = fmt::format("at least {} for --totalverlen", *major + *sub),
                     .example = fmt::format("--totalverlen {}", *major + *sub),
                     .detail = fmt::format("major and sub version have {} bytes together, the "
                                           "whole version has {}",
                                           *major + *sub, *total)});
    }
    if (*address + *total >= kFlashEnd) {
        line.Report("wrong-version-range", *line.Find("veraddr"), Underline::Value,
                    {.allowed = fmt::format("an address below {:#x}", kFlashEnd - *total),
                     .example = "--veraddr 0x100",
                     .detail = fmt::format("it ends at {:#x}; address and length together must be "
                                           "below {:#x}",
                                           *address + *total, kFlashEnd)});
    }
}

void CheckDumpRange(LineUnderCheck &line) {
    const auto address = NumberOf(line, "dumpaddr", 0);
    const auto length = NumberOf(line, "dumplen");
    if (!line.Holds("dumpflash") || !address || !length || *address + *length <= kFlashEnd) {
        return;
    }
    const bool fits = *address < kFlashEnd;
    line.Report(
        "dump-beyond-flash", *line.Find(fits ? "dumplen" : "dumpaddr"), Underline::Value,
        {.value = fmt::format("{:#x}", *address + *length),
         .allowed = fmt::format("{:#x}", kFlashEnd),
         .example = fits ? fmt::format("--dumplen {:#x}", kFlashEnd - *address) : std::string()});
}

/// The bytes of a list; empty if one of them is not a byte.
std::vector<std::uint8_t> BytesOf(const GivenArgument &given) {
    const char separator = FormOf(*given.option).separator;
    std::vector<std::uint8_t> bytes;
    std::string_view rest = *given.value;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(separator), rest.size());
        if (end > 0) {
            const NumberText number = ReadNumberText(rest.substr(0, end));
            if (!number.isComplete || number.stored < 0 || number.stored > 0xFF) {
                return {};
            }
            bytes.push_back(static_cast<std::uint8_t>(number.stored));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return bytes;
}

void CheckMessageLength(LineUnderCheck &line) {
    const GivenArgument *given = line.Find("writedata");
    if (given == nullptr || !line.Holds("ddccicmd, i2cwrite") || line.HasFatal(*given)) {
        return;
    }
    const std::vector<std::uint8_t> bytes = BytesOf(*given);
    constexpr std::size_t kHeader = 3;
    constexpr std::size_t kLongest = 0x7F;
    if (bytes.size() < kHeader || (bytes[2] & kLongest) == bytes.size() - kHeader) {
        return;
    }
    const std::size_t follow = bytes.size() - kHeader;
    std::string value;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t byte = i == 2 ? 0x80 + follow : bytes[i];
        value += fmt::format("{}{:#04x}", i == 0 ? "" : ",", byte);
    }
    FindingWords words{.other = std::to_string(follow),
                       .example = "--writedata " + value,
                       .detail = std::to_string(bytes[2] & kLongest)};
    ArgumentList corrected;
    if (follow > kLongest) {
        words.example = "--writedata 0x6E,0x51,0x82,0x01,0x02";
    } else {
        corrected = WithValue(line.Arguments(), *given, value);
    }
    line.Report("wrong-length-byte", *given, Underline::Value, words).corrected = corrected;
}

} // namespace

void CheckRanges(LineUnderCheck &line) {
    CheckVersion(line);
    CheckDumpRange(line);
    CheckMessageLength(line);
}

} // namespace ispctl
