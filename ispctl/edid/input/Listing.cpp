#include "edid/input/Listing.h"

#include <algorithm>
#include <string>

namespace ispctl::edid {
namespace {

constexpr std::string_view kDecoderHead = "edid-decode (hex):";
constexpr std::string_view kRegFileHead = "\"EDID\"=hex:";
constexpr std::size_t kMinDashes = 8;
constexpr std::string_view kHeaderDigits = "00ffffffffffff00";

bool IsPropertyHead(std::string_view line) {
    return line == "EDID:" || line == "EDID_DATA:";
}

std::size_t Indentation(std::string_view line) {
    return std::min(line.find_first_not_of(" \t"), line.size());
}

/// RETURNS the index after the lines that belong to the head. They are indented more deeply; if the
/// indentation was lost, they end with the first line that is not hexadecimal.
std::size_t EndOfProperty(const std::vector<Token> &lines, std::size_t head) {
    const std::size_t depth = Indentation(lines[head].text);
    const bool isIndented = head + 1 < lines.size() && Indentation(lines[head + 1].text) > depth;
    std::size_t end = head + 1;
    while (end < lines.size() && (isIndented ? Indentation(lines[end].text) > depth
                                             : IsHex(TrimSpaces(lines[end].text)))) {
        ++end;
    }
    return end;
}

/// RETURNS the text of the lines from begin up to end.
Token Join(std::string_view text, const std::vector<Token> &lines, std::size_t begin,
           std::size_t end) {
    const std::size_t first = begin < lines.size() ? lines[begin].offset : text.size();
    const std::size_t last = end < lines.size() ? lines[end].offset : text.size();
    return {text.substr(first, last - first), first};
}

bool IsDashes(std::string_view line) {
    return line.size() >= kMinDashes && line.find_first_not_of('-') == std::string_view::npos;
}

} // namespace

Listing FindProperty(std::string_view text) {
    const auto lines = SplitLines(text);
    Listing listing;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (IsPropertyHead(TrimSpaces(lines[i].text)) && ++listing.count == 1) {
            listing.digits = Join(text, lines, i + 1, EndOfProperty(lines, i));
        }
    }
    return listing;
}

bool IsListingWithoutEdid(std::string_view text) {
    const std::string_view begin = TrimSpaces(text);
    const std::string_view line = begin.substr(0, begin.find('\n'));
    return line.starts_with("Screen ") && line.find(": minimum ") != std::string_view::npos &&
           FindProperty(text).count == 0;
}

Listing FindRegFileValue(std::string_view text) {
    const auto lines = SplitLines(text);
    Listing listing;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!TrimSpaces(lines[i].text).starts_with(kRegFileHead) || ++listing.count > 1) {
            continue;
        }
        std::size_t end = i;
        while (end < lines.size() && TrimSpaces(lines[end].text).ends_with('\\')) {
            ++end;
        }
        listing.digits = Join(text, lines, i, end + 1);
        const std::size_t head = listing.digits.text.find(kRegFileHead) + kRegFileHead.size();
        listing.digits.text.remove_prefix(head);
        listing.digits.offset += head;
    }
    return listing;
}

Listing FindDecoderBlock(std::string_view text) {
    const auto lines = SplitLines(text);
    Listing listing;
    std::size_t begin = 0;
    std::size_t dashes = lines.size();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = TrimSpaces(lines[i].text);
        if (line == kDecoderHead && ++listing.count == 1) {
            begin = i + 1;
            dashes = lines.size();
        } else if (IsDashes(line) && dashes == lines.size()) {
            dashes = i;
        }
    }
    if (dashes < lines.size()) {
        listing.count = std::max<std::size_t>(listing.count, 1);
    }
    listing.digits = Join(text, lines, begin, std::max(begin, dashes));
    return listing;
}

Listing FindAngleBrackets(std::string_view text) {
    Listing listing;
    for (std::size_t open = text.find('<'); open != std::string_view::npos;
         open = text.find('<', open + 1)) {
        const std::size_t close = std::min(text.find('>', open), text.size());
        const Token inside{text.substr(open + 1, close - open - 1), open + 1};
        std::string digits;
        for (const char c : inside.text.substr(0, 2 * kHeaderDigits.size())) {
            digits += IsHexDigit(c) ? static_cast<char>(c | 0x20) : ' ';
        }
        digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
        if (digits.starts_with(kHeaderDigits) && ++listing.count == 1) {
            listing.digits = inside;
        }
    }
    return listing;
}

} // namespace ispctl::edid
