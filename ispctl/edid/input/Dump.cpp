#include "edid/input/Dump.h"

#include <algorithm>
#include <fmt/format.h>

#include "edid/input/DumpLines.h"

namespace ispctl::edid {
namespace {

/// One way of reading the values of a dump.
struct Reading {
    std::size_t minDigits, maxDigits;
    unsigned int radix;
    std::size_t bytes; ///< per value; 0: two digits each, in their order
    bool isSwapped;    ///< the low byte comes first
};
constexpr std::size_t kAnyDigits = 64;
constexpr std::size_t kHeaderDigits = 16;
constexpr std::size_t kHexOffsetDigits = 8;
constexpr Reading kReadings[] = {
    {2, kAnyDigits, 16, 0, false}, {4, 4, 16, 2, true},  {8, 8, 16, 4, true}, {16, 16, 16, 8, true},
    {3, 3, 8, 1, false},           {1, 3, 10, 1, false}, {6, 6, 8, 2, true},  {6, 6, 8, 2, false},
    {1, 5, 10, 2, true},           {1, 5, 10, 2, false},
};

std::optional<std::uint64_t> ValueOf(std::string_view digits, unsigned int radix) {
    std::uint64_t value = 0;
    for (const char digit : digits) {
        if (HexValue(digit) >= radix || value > UINT64_MAX / 16) {
            return std::nullopt;
        }
        value = value * radix + HexValue(digit);
    }
    return value;
}

/// RETURNS whether the value can be read this way; its bytes are appended.
bool AppendValue(std::string_view digits, const Reading &reading, Bytes &bytes) {
    if (digits.size() < reading.minDigits || digits.size() > reading.maxDigits) {
        return false;
    }
    if (reading.bytes == 0) {
        for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
            bytes.push_back(
                static_cast<std::uint8_t>(HexValue(digits[i]) * 16 + HexValue(digits[i + 1])));
        }
        return digits.size() % 2 == 0;
    }
    const auto value = ValueOf(digits, reading.radix);
    if (!value || (reading.bytes < 8 && *value >> (8 * reading.bytes) != 0)) {
        return false;
    }
    for (std::size_t i = 0; i < reading.bytes; ++i) {
        const std::size_t byte = reading.isSwapped ? i : reading.bytes - 1 - i;
        bytes.push_back(static_cast<std::uint8_t>(*value >> (8 * byte)));
    }
    return true;
}

std::optional<Bytes> BytesOf(const DumpLine &line, const Reading &reading) {
    Bytes bytes;
    for (const Token &value : line.values) {
        if (!AppendValue(value.text, reading, bytes)) {
            return std::nullopt;
        }
    }
    return bytes;
}

/// RETURNS the reading that gives an EDID header, or else the first one, if all values are pairs.
const Reading &FindReading(const std::vector<DumpLine> &lines, DumpKind kind) {
    for (const Reading &reading : kReadings) {
        // The header is the same backwards. A dump without colons that shows words of eight bytes
        // was written by od.
        if (kind == DumpKind::Plain && reading.bytes == 0 && !lines.front().values.empty() &&
            lines.front().values.front().text.size() == kHeaderDigits) {
            continue;
        }
        const auto bytes = BytesOf(lines.front(), reading);
        if (bytes && HasHeader(*bytes)) {
            return reading;
        }
    }
    const DumpLine &first = lines.front();
    const bool arePairs = std::all_of(first.values.begin(), first.values.end(),
                                      [](const Token &value) { return value.text.size() == 2; });
    if (!arePairs) {
        throw SyntaxError(first.values.empty() ? first.offset.offset : first.values[0].offset,
                          "the order of the bytes in these numbers is not known; use xxd or "
                          "hexdump -C");
    }
    return kReadings[0];
}

/// Puts the lines together by their offsets.
class Assembler {
  public:
    Assembler(const std::vector<DumpLine> &lines, const Reading &reading)
        : m_lines(lines), m_reading(reading) {}

    /// RETURNS nothing if the offsets are not in this radix.
    std::optional<Bytes> Join(unsigned int radix) {
        const auto base = ValueOf(m_lines.front().offset.text, radix);
        Bytes bytes;
        Bytes previous;
        for (const DumpLine &line : m_lines) {
            const auto offset = ValueOf(line.offset.text, radix);
            if (!base || !offset || *offset < *base || *offset - *base > kMaxInputBytes ||
                !Reach(*offset - *base, line, previous, bytes)) {
                m_wrong = std::max(m_wrong, &line);
                return std::nullopt;
            }
            previous = ReadValues(line);
            bytes.insert(bytes.end(), previous.begin(), previous.end());
        }
        return bytes;
    }

    /// The line up to which at least one radix fitted. REQUIRES: a Join failed.
    const DumpLine &Wrong() const {
        return *m_wrong;
    }

  private:
    Bytes ReadValues(const DumpLine &line) const {
        Bytes bytes;
        for (const Token &value : line.values) {
            if (!AppendValue(value.text, m_reading, bytes)) {
                throw SyntaxError(value.offset,
                                  fmt::format("{} is not like the numbers before it", value.text));
            }
        }
        return bytes;
    }

    /// Fills up to an offset if the line before is repeated. The last offset of an odd number of
    /// bytes ends in the middle of a word.
    bool Reach(std::uint64_t offset, const DumpLine &line, const Bytes &previous, Bytes &bytes) {
        while (line.followsStar && !previous.empty() && bytes.size() < offset) {
            bytes.insert(bytes.end(), previous.begin(), previous.end());
        }
        if (line.values.empty() && m_reading.bytes > 1 && offset + 1 == bytes.size()) {
            bytes.pop_back();
        }
        return bytes.size() == offset;
    }

    const std::vector<DumpLine> &m_lines;
    const Reading &m_reading;
    const DumpLine *m_wrong = m_lines.data();
};

} // namespace

DumpBytes ParseDump(std::string_view text, DumpKind kind) {
    const auto lines = ReadDumpLines(text, kind);
    const Reading &reading = FindReading(lines, kind);
    Assembler assembler(lines, reading);
    // Octal offsets have seven digits; with eight, 00000020 is never 16.
    const bool mayBeOctal = lines.front().offset.text.size() != kHexOffsetDigits;
    for (const unsigned int radix : {8U, 10U, 16U}) {
        if (radix != 16 && !mayBeOctal) {
            continue;
        }
        if (auto bytes = assembler.Join(radix)) {
            return {std::move(*bytes), reading.isSwapped};
        }
    }
    throw SyntaxError(assembler.Wrong().offset.offset,
                      fmt::format("offset {} does not follow from the lines before it: a line is "
                                  "missing or incomplete",
                                  assembler.Wrong().offset.text));
}

} // namespace ispctl::edid
