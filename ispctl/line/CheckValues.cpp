#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>

#include "line/FittingExample.h"
#include "line/NearestName.h"
#include "line/NumberText.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

/// A number within a value: all of it, or one of its bytes.
struct Piece {
    std::string text;
    std::size_t offset = 0; ///< within the value
};

bool IsAllOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

/// The digits of a number, without a sign or spaces before them.
std::string WithoutLeadingZeros(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_of("0123456789"), text.size() - 1));
    return std::string(text.substr(std::min(text.find_first_not_of('0'), text.size() - 1)));
}

/// What a number with letters after it was meant to be; empty if nobody can know.
std::string MeantNumber(const std::string &text, const NumberText &number, const ValueForm &form) {
    constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz"; // of a unit
    constexpr std::uint64_t kLargestMultiple = 1U << 12U;
    std::string rest = text.substr(number.end);
    std::transform(rest.begin(), rest.end(), rest.begin(), [](char c) { return c | 0x20; });
    const bool isKilo = rest == "k" || rest == "kb" || rest == "kib";
    const bool isMega = rest == "m" || rest == "mb" || rest == "mib";
    const bool isHex = text.find_first_of("xX") < number.end; // letters are no unit then
    const std::string beforeLast = text.substr(0, text.size() - 1);
    std::string meant;
    if (number.hasDigits && !form.isBounded && (isKilo || isMega)) {
        if (number.magnitude >= kLargestMultiple) {
            return "";
        }
        meant = std::to_string(number.magnitude * (isKilo ? 1024U : 1024U * 1024U));
    } else if (rest.ends_with('h') && IsAllOf(beforeLast, kHexDigits)) {
        meant = "0x" + beforeLast;
    } else if (IsAllOf(text, kHexDigits)) {
        meant = "0x" + text;
    } else if (number.hasDigits && form.isBounded && !isHex && IsAllOf(rest, kLetters)) {
        meant = text.substr(0, number.end);
    }
    const NumberText result = ReadNumberText(meant);
    const auto magnitude = static_cast<std::int64_t>(result.magnitude);
    const bool fits = result.isComplete && !result.isHuge && !result.isNegative &&
                      magnitude >= form.first && magnitude <= form.last;
    return fits ? meant : "";
}

/// Checks one number, and reports what is wrong with it.
class NumberCheck {
  public:
    NumberCheck(LineUnderCheck &line, const GivenArgument &given, const ValueForm &form)
        : m_line(line), m_given(given), m_form(form), m_numbers(form) {
        const OptionFacts &option = *given.option;
        const bool isByte = form.kind == ValueForm::Kind::Bytes;
        m_numbers.first = isByte ? 0 : form.first;
        m_numbers.last = isByte ? 255 : form.last;
        m_numbers.isBounded = isByte || form.isBounded;
        m_words.allowed = isByte ? "a number from 0 to 255" : AllowedValue(option);
        m_words.example = FittingExample(line, given);
    }

    /// RETURNS whether the library could read it as meant.
    bool Check(const Piece &piece) {
        const NumberText number = ReadNumberText(piece.text);
        m_words.value = piece.text;
        if (!number.isComplete) {
            CheckIncomplete(piece, number);
            return false;
        }
        if (number.isHuge) {
            m_words.detail = m_numbers.isBounded
                                 ? std::to_string(number.stored)
                                 : std::to_string(static_cast<std::uint32_t>(number.stored));
            Report("number-truncated", piece, "");
            return false;
        }
        const auto magnitude = static_cast<std::int64_t>(number.magnitude);
        const std::int64_t value = number.isNegative ? -magnitude : magnitude;
        if (value < m_numbers.first || value > m_numbers.last) {
            m_words.detail =
                number.isOctal ? fmt::format(" (octal for {}, because of its leading zero)", value)
                               : "";
            Report("number-out-of-range", piece, "");
            return false;
        }
        if (number.isOctal) {
            CheckOctal(piece, value);
        }
        return true;
    }

  private:
    /// A number that means the same in decimal misleads nobody.
    void CheckOctal(const Piece &piece, std::int64_t value) {
        const std::string decimal = WithoutLeadingZeros(piece.text);
        const NumberText read = ReadNumberText(decimal);
        const auto asDecimal = static_cast<std::int64_t>(read.magnitude);
        if (asDecimal == value) {
            return;
        }
        const FindingWords others = m_words; // of the numbers after this one
        m_words.example = std::to_string(value);
        m_words.other = asDecimal > m_numbers.last ? "" : decimal;
        m_words.detail = fmt::format("{}, not {}", value, decimal);
        Report("octal-number", piece, m_words.other.empty() ? m_words.example : decimal);
        m_words = others;
    }

    void CheckIncomplete(const Piece &piece, const NumberText &number) {
        m_words.detail = piece.text.substr(number.end);
        if (m_words.detail == "x" || m_words.detail == "X") { // "0x" alone
            Report("not-a-number", piece, "");
            return;
        }
        if (number.hasDigits && IsAllOf(m_words.detail, "0123456789")) {
            m_words.detail.resize(1);
            m_words.other = WithoutLeadingZeros(piece.text);
            Report("octal-digit", piece, m_words.other);
            return;
        }
        const std::string meant = MeantNumber(piece.text, number, m_numbers);
        if (!meant.empty() && m_form.kind == ValueForm::Kind::Number) {
            m_words.example = fmt::format("--{} {}", m_given.option->name, meant);
        }
        if (number.hasDigits) {
            Report("number-with-rest", piece, meant);
        } else {
            Report("not-a-number", piece, meant);
        }
    }

    void Report(FindingName name, const Piece &piece, const std::string &meant) {
        Finding &finding = m_line.Report(name, m_given, Underline::Value, m_words);
        if (!piece.text.empty()) {
            finding.offset += piece.offset;
            finding.length = piece.text.size();
        }
        if (!meant.empty()) {
            std::string value = *m_given.value;
            value.replace(piece.offset, piece.text.size(), meant);
            finding.corrected = WithValue(m_line.Arguments(), m_given, value);
        }
    }

    LineUnderCheck &m_line;
    const GivenArgument &m_given;
    const ValueForm &m_form;
    ValueForm m_numbers; ///< of the value, or of each byte
    FindingWords m_words;
};

/// As the library splits a list: empty pieces do not count.
std::vector<Piece> SplitBytes(const std::string &text, char separator) {
    std::vector<Piece> pieces;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) {
            pieces.push_back({text.substr(start, end - start), start});
        }
        start = end + 1;
    }
    return pieces;
}

/// Whether another sign separates what would be a list of bytes.
bool CheckSeparator(LineUnderCheck &line, const GivenArgument &given, const ValueForm &form) {
    for (const char sign : std::string_view(",.;:- ")) {
        const std::vector<Piece> pieces = SplitBytes(*given.value, sign);
        const bool areNumbers = std::all_of(pieces.begin(), pieces.end(), [](const Piece &piece) {
            return ReadNumberText(piece.text).isComplete;
        });
        if (sign == form.separator || pieces.size() < 2 || !areNumbers) {
            continue;
        }
        std::string value = *given.value;
        std::replace(value.begin(), value.end(), sign, form.separator);
        line.Report("wrong-separator", given, Underline::Value,
                    {.other = std::string(1, form.separator),
                     .example = fmt::format("--{} {}", given.option->name, value),
                     .detail = std::string(1, sign)})
            .corrected = WithValue(line.Arguments(), given, value);
        return true;
    }
    return false;
}

void CheckBytes(LineUnderCheck &line, const GivenArgument &given, const ValueForm &form) {
    if (CheckSeparator(line, given, form)) {
        return;
    }
    const std::vector<Piece> pieces = SplitBytes(*given.value, form.separator);
    NumberCheck check(line, given, form);
    for (const Piece &piece : pieces) {
        if (!check.Check(piece)) {
            return;
        }
    }
    if (pieces.size() < form.fewest || pieces.size() > form.most) {
        line.Report(
            "wrong-byte-count", given, Underline::Value,
            {.allowed = fmt::format("{} to {}", form.fewest, form.most),
             .example = ExampleOf(*given.option),
             .detail = fmt::format("{} byte{}", pieces.size(), pieces.size() == 1 ? "" : "s")});
    }
}

/// Nothing if several words are equally near: one of them as a correction would be a guess.
std::string_view OnlyNearest(const std::string &value,
                             const std::vector<std::string_view> &keywords) {
    const std::string_view nearest = NearestName(value, keywords);
    const auto isAsNear = [&](std::string_view word) {
        return word != nearest && NameDistance(value, word) == NameDistance(value, nearest);
    };
    return std::any_of(keywords.begin(), keywords.end(), isAsNear) ? std::string_view() : nearest;
}

void CheckKeyword(LineUnderCheck &line, const GivenArgument &given, const ValueForm &form) {
    if (std::find(form.keywords.begin(), form.keywords.end(), *given.value) !=
        form.keywords.end()) {
        return;
    }
    const std::string_view nearest = OnlyNearest(*given.value, form.keywords);
    const std::string name = "--" + std::string(given.option->name) + " ";
    FindingWords words{.allowed = AllowedValue(*given.option), .example = ExampleOf(*given.option)};
    ArgumentList corrected;
    if (!nearest.empty()) {
        words.other = name + std::string(nearest);
        corrected = WithValue(line.Arguments(), given, nearest);
    }
    line.Report("wrong-keyword", given, Underline::Value, words).corrected = corrected;
}

void CheckValue(LineUnderCheck &line, const GivenArgument &given) {
    const ValueForm form = FormOf(*given.option);
    const FindingWords words{.allowed = AllowedValue(*given.option),
                             .example = FittingExample(line, given)};
    if (given.value->empty()) {
        line.Report("empty-value", given, Underline::Value, words);
    } else if (given.value->starts_with("--") && given.valuePosition != given.position) {
        line.Report("value-like-option", given, Underline::Value, words);
        ArgumentList corrected = line.Arguments();
        corrected.insert(corrected.begin() + static_cast<std::ptrdiff_t>(given.valuePosition),
                         ExampleValue(*given.option));
        line.AddProbe(std::move(corrected));
    } else if (form.kind == ValueForm::Kind::Number) {
        NumberCheck(line, given, form).Check({*given.value, 0});
    } else if (form.kind == ValueForm::Kind::Bytes) {
        CheckBytes(line, given, form);
    } else if (form.kind == ValueForm::Kind::Keyword) {
        CheckKeyword(line, given, form);
    }
}

/// Values that the library reads while it walks through the line; of the others the last counts.
bool IsReadAtOnce(const OptionFacts &option) {
    using ScalerIspFacts::Kind;
    const Kind kind = option.effect.kind;
    return kind == Kind::Bank || kind == Kind::Keyword || kind == Kind::Search ||
           kind == Kind::Firmware;
}

} // namespace

void CheckValues(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const GivenArgument &given = *line.Options()[i];
        if (given.value && !line.IsExplained(given.valuePosition) &&
            (!line.IsReplaced(i) || IsReadAtOnce(*given.option))) {
            CheckValue(line, given);
        }
    }
}

} // namespace ispctl
