#ifndef SCALER_ISP_ARGS_OPTION_NEEDS_H
#define SCALER_ISP_ARGS_OPTION_NEEDS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "scaler_isp/args/CommandFacts.h"

/// \file
/// Evaluates the columns NEEDS, EXCLUDES and GOES_WITH of options.def for a command line, and
/// describes them in English. The head of that table explains the grammar. Header only, for
/// programs.
///
///     const GivenOption options[] = {{"isp"}, {"bank", "3"}};
///     HasNeeds(*FindOption("bank"), {options, 1})    // false: there is no --fw

namespace ScalerIspFacts {

/// One option of a command line: its full name without the dashes, and its value if it has one.
struct GivenOption {
    std::string_view name;
    std::string_view value = {};
};

/// The options of one command line in their order, and the index of the one to evaluate.
struct GivenLine {
    std::span<const GivenOption> options;
    std::size_t self = 0;
};

namespace Detail {

/// Splits an expression into tokens; the evaluator and the describer give them their meaning.
class Scanner {
  public:
    constexpr explicit Scanner(std::string_view text) : m_rest(text) {
        SkipSpaces();
    }

    constexpr bool AtEnd() const {
        return m_rest.empty();
    }

    constexpr bool Accept(std::string_view token) {
        if (!m_rest.starts_with(token)) {
            return false;
        }
        m_rest.remove_prefix(token.size());
        SkipSpaces();
        return true;
    }

    /// A name or a value; empty if there is none.
    constexpr std::string_view Word() {
        std::size_t length = 0;
        while (length < m_rest.size() && IsWordCharacter(m_rest[length])) {
            ++length;
        }
        const std::string_view word = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        SkipSpaces();
        return word;
    }

  private:
    static constexpr bool IsWordCharacter(char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_';
    }

    constexpr void SkipSpaces() {
        while (m_rest.starts_with(' ')) {
            m_rest.remove_prefix(1);
        }
    }

    std::string_view m_rest;
};

constexpr bool IsCondition(std::string_view word) {
    return !word.empty() && word[0] >= 'A' && word[0] <= 'Z';
}

/// Evaluates expressions for one line. Every part is parsed even if the result is already known, so
/// that an error anywhere in an expression is found.
class Evaluator {
  public:
    constexpr explicit Evaluator(GivenLine line) : m_line(line) {}

    /// False for an empty expression.
    constexpr bool Holds(std::string_view expression) {
        Scanner scanner(expression);
        if (scanner.AtEnd()) {
            return false;
        }
        const bool holds = All(scanner);
        m_isValid = m_isValid && scanner.AtEnd();
        return holds;
    }

    /// Whether every expression so far was well-formed and named options and conditions that exist.
    constexpr bool IsValid() const {
        return m_isValid;
    }

  private:
    enum class Side : std::uint8_t { Any, Left, Right };

    constexpr bool All(Scanner &scanner) {
        bool holds = One(scanner);
        while (scanner.Accept(",")) {
            const bool next = One(scanner);
            holds = holds && next;
        }
        return holds;
    }

    constexpr bool One(Scanner &scanner) {
        bool holds = Term(scanner);
        while (scanner.Accept("|")) {
            const bool next = Term(scanner);
            holds = holds || next;
        }
        return holds;
    }

    constexpr bool Term(Scanner &scanner) {
        if (scanner.Accept("!")) {
            return !Term(scanner);
        }
        if (scanner.Accept("(")) {
            const bool holds = All(scanner);
            m_isValid = scanner.Accept(")") && m_isValid;
            return holds;
        }
        const Side side = scanner.Accept("after ")    ? Side::Left
                          : scanner.Accept("before ") ? Side::Right
                                                      : Side::Any;
        const std::string_view name = scanner.Word();
        if (IsCondition(name)) {
            return Condition(name);
        }
        m_isValid = m_isValid && FindOption(name) != nullptr;
        const bool hasValue = scanner.Accept("=");
        return IsGiven(name, hasValue, hasValue ? scanner.Word() : std::string_view(), side);
    }

    constexpr bool IsGiven(std::string_view name, bool hasValue, std::string_view value,
                           Side side) const {
        for (std::size_t i = 0; i < m_line.options.size(); ++i) {
            const GivenOption &option = m_line.options[i];
            const bool isOnSide =
                side == Side::Any || (side == Side::Left ? i < m_line.self : i > m_line.self);
            if (isOnSide && option.name == name && (!hasValue || option.value == value)) {
                return true;
            }
        }
        return false;
    }

    constexpr bool Condition(std::string_view name) {
        const ConditionFacts *condition = FindCondition(name);
        if (condition == nullptr) {
            m_isValid = false;
            return false;
        }
        if (!condition->expression.empty()) {
            return Holds(condition->expression);
        }
        if (name == "ANOTHER") {
            return HasAnother();
        }
        if (name == "OWN_FILE") {
            return HasOwnFile();
        }
        return name != "NEVER" && HasActionWithFiles(name);
    }

    constexpr const OptionFacts *Self() const {
        return m_line.self < m_line.options.size() ? FindOption(m_line.options[m_line.self].name)
                                                   : nullptr;
    }

    constexpr bool HasAnother() const {
        const OptionFacts *self = Self();
        for (const GivenOption &option : m_line.options) {
            const OptionFacts *facts = FindOption(option.name);
            if (self != nullptr && facts != nullptr && facts->name != self->name &&
                facts->effect.group != None && facts->effect.group == self->effect.group) {
                return true;
            }
        }
        return false;
    }

    constexpr bool HasOwnFile() const {
        const OptionFacts *self = Self();
        for (const GivenOption &option : m_line.options) {
            const OptionFacts *facts = FindOption(option.name);
            if (self != nullptr && facts != nullptr && facts->effect.entry == self->effect.entry &&
                (facts->effect.kind == Kind::Firmware || facts->effect.kind == Kind::Search)) {
                return true;
            }
        }
        return false;
    }

    constexpr bool HasActionWithFiles(std::string_view files) const {
        for (const GivenOption &option : m_line.options) {
            const ActionFacts *action = FindAction(option.name);
            if (action != nullptr && action->files == files) {
                return true;
            }
        }
        return false;
    }

    GivenLine m_line;
    bool m_isValid = true;
};

/// Describes a valid expression in English.
class Describer {
  public:
    explicit Describer(Group group) : m_group(group) {}

    std::string All(Scanner &scanner) const {
        std::string text = One(scanner);
        bool hasChoice = text.find(" or ") != std::string::npos;
        std::string rest;
        while (scanner.Accept(",")) {
            const std::string next = One(scanner);
            hasChoice = hasChoice || next.find(" or ") != std::string::npos;
            rest += '\n' + next;
        }
        for (const char c : rest) {
            // A comma if "and" could be read as part of the preceding choice.
            text += c != '\n' ? std::string(1, c) : hasChoice ? ", and " : " and ";
        }
        return text;
    }

  private:
    std::string One(Scanner &scanner) const {
        std::string text = Term(scanner);
        while (scanner.Accept("|")) {
            text += " or " + Term(scanner);
        }
        return text;
    }

    std::string Term(Scanner &scanner) const {
        if (scanner.Accept("!")) {
            return "no " + Term(scanner);
        }
        if (scanner.Accept("(")) {
            const std::string inner = All(scanner);
            scanner.Accept(")");
            return "(" + inner + ")";
        }
        const char *side = scanner.Accept("after ")    ? " before it"
                           : scanner.Accept("before ") ? " after it"
                                                       : "";
        const std::string_view name = scanner.Word();
        if (IsCondition(name)) {
            return WordsOf(name);
        }
        std::string text = "--" + std::string(name);
        if (scanner.Accept("=")) {
            text += "=" + std::string(scanner.Word());
        }
        return text + side;
    }

    std::string WordsOf(std::string_view condition) const {
        if (condition == "ANOTHER" && m_group == SignType) {
            return "the other signature type";
        }
        if (condition == "ANOTHER" && m_group == VersionLocation) {
            return "another location";
        }
        const ConditionFacts *facts = FindCondition(condition);
        return std::string(facts != nullptr ? facts->words : condition);
    }

    Group m_group;
};

} // namespace Detail

/// Whether the option has what it needs on this line.
constexpr bool HasNeeds(const OptionFacts &option, GivenLine line) {
    return option.needs.empty() || Detail::Evaluator(line).Holds(option.needs);
}

/// Whether something on this line excludes the option.
constexpr bool IsExcluded(const OptionFacts &option, GivenLine line) {
    return Detail::Evaluator(line).Holds(option.excludes);
}

/// Whether the line has an option or action with which this option is meant to be used.
constexpr bool HasCompany(const OptionFacts &option, GivenLine line) {
    return option.goesWith.empty() || Detail::Evaluator(line).Holds(option.goesWith);
}

/// Whether the expression holds for the line; false for an empty expression.
constexpr bool Holds(std::string_view expression, GivenLine line) {
    return Detail::Evaluator(line).Holds(expression);
}

/// Whether the expression is empty, or well-formed with existing options and conditions only.
constexpr bool IsValidExpression(std::string_view expression) {
    Detail::Evaluator evaluator(GivenLine{});
    static_cast<void>(evaluator.Holds(expression));
    return evaluator.IsValid();
}

/// Describes an expression of this option, such as "--fw or --searchfw, and --signfile".
inline std::string Describe(const OptionFacts &option, std::string_view expression) {
    Detail::Scanner scanner(expression);
    return scanner.AtEnd() ? std::string() : Detail::Describer(option.effect.group).All(scanner);
}

} // namespace ScalerIspFacts

#endif
