#include "line/MissingParts.h"

#include <algorithm>

#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::GivenLine;
using ScalerIspFacts::GivenOption;
using ScalerIspFacts::OptionFacts;
using ScalerIspFacts::Detail::IsCondition;
using ScalerIspFacts::Detail::Scanner;
using Alternatives = std::vector<Alternative>;

// More alternatives than a sentence can name.
constexpr std::size_t kMostNamed = 3;
constexpr std::size_t kMostKept = 32;

const Alternatives kImpossible;
const Alternatives kHolds{Alternative{}};

bool Contains(const Alternative &all, const Alternative &some) {
    return std::all_of(some.begin(), some.end(), [&](const MissingPart &part) {
        return std::find(all.begin(), all.end(), part) != all.end();
    });
}

/// Without those that demand more than another one.
void AppendMinimal(Alternatives &all, const Alternative &added) {
    const auto isEnough = [&](const Alternative &other) { return Contains(added, other); };
    if (std::any_of(all.begin(), all.end(), isEnough) || all.size() == kMostKept) {
        return;
    }
    std::erase_if(all, [&](const Alternative &other) { return Contains(other, added); });
    all.push_back(added);
}

/// Nobody is advised to do without the verification of a signature.
bool SkipsVerification(const OptionFacts &option) {
    return option.meaning.starts_with("factory mode");
}

bool IsAction(std::string_view name) {
    return ScalerIspFacts::FindAction(name) != nullptr;
}

/// Reads an expression by the grammar of the option table.
class Reader {
  public:
    Reader(GivenLine line, Advice advice) : m_line(line), m_advice(advice) {}

    Alternatives Read(std::string_view expression) const {
        Scanner scanner(expression);
        return scanner.AtEnd() ? kHolds : All(scanner);
    }

  private:
    Alternatives All(Scanner &scanner) const {
        Alternatives found = One(scanner);
        while (scanner.Accept(",")) {
            const Alternatives next = One(scanner);
            Alternatives both;
            for (const Alternative &first : found) {
                for (const Alternative &second : next) {
                    Alternative joined(first);
                    std::copy_if(second.begin(), second.end(), std::back_inserter(joined),
                                 [&](const MissingPart &part) { return !Contains(first, {part}); });
                    AppendMinimal(both, joined);
                }
            }
            found = std::move(both);
        }
        return found;
    }

    Alternatives One(Scanner &scanner) const {
        Alternatives found;
        do {
            for (const Alternative &alternative : Term(scanner)) {
                AppendMinimal(found, alternative);
            }
        } while (scanner.Accept("|"));
        return found;
    }

    Alternatives Term(Scanner &scanner) const {
        if (scanner.Accept("!")) {
            return Term(scanner) == kHolds ? kImpossible : kHolds;
        }
        if (scanner.Accept("(")) {
            Alternatives inner = All(scanner);
            scanner.Accept(")");
            return inner;
        }
        const std::string_view side = scanner.Accept("after ")    ? " before it"
                                      : scanner.Accept("before ") ? " after it"
                                                                  : "";
        const std::string_view name = scanner.Word();
        if (IsCondition(name)) {
            return Condition(name);
        }
        const std::string_view value = scanner.Accept("=") ? scanner.Word() : "";
        return Option(name, value, side);
    }

    Alternatives Option(std::string_view name, std::string_view value,
                        std::string_view side) const {
        std::string expression(side == " before it"  ? "after "
                               : side == " after it" ? "before "
                                                     : "");
        expression += std::string(name) + (value.empty() ? "" : "=" + std::string(value));
        if (ScalerIspFacts::Holds(expression, m_line)) {
            return kHolds;
        }
        const OptionFacts &option = *ScalerIspFacts::FindOption(name);
        const bool isOther = m_advice == Advice::Sound &&
                             (SkipsVerification(option) || (!value.empty() && IsGiven(name)));
        if (isOther || option.needs == "NEVER" || HasRival(option)) {
            return kImpossible;
        }
        MissingPart part{"--" + std::string(name), ExampleOf(option)};
        if (!value.empty()) {
            part.words += " " + std::string(value);
            part.example = part.words;
        }
        part.words += side;
        return {{std::move(part)}};
    }

    Alternatives Condition(std::string_view name) const {
        if (ScalerIspFacts::Holds(name, m_line)) {
            return kHolds;
        }
        const auto &facts = *ScalerIspFacts::FindCondition(name);
        if (name == "OWN_FILE") {
            return OwnFile();
        }
        if (facts.expression.empty()) {
            const bool isImpossible = name == "NEVER" || name == "ANOTHER" || HasAction();
            return isImpossible ? kImpossible : Alternatives{{{std::string(facts.words), "--isp"}}};
        }
        Alternatives found = Read(facts.expression);
        if (found.size() > kMostNamed) {
            return {{{std::string(facts.words), found.front().front().example}}};
        }
        return found;
    }

    /// The firmware file with the number of the option's start bank.
    Alternatives OwnFile() const {
        const OptionFacts &self = *ScalerIspFacts::FindOption(m_line.options[m_line.self].name);
        for (const OptionFacts &option : ScalerIspFacts::kOptions) {
            if (option.effect.kind == ScalerIspFacts::Kind::Firmware &&
                option.effect.entry == self.effect.entry) {
                return Option(option.name, "", "");
            }
        }
        return kImpossible;
    }

    bool IsGiven(std::string_view name) const {
        return std::any_of(m_line.options.begin(), m_line.options.end(),
                           [&](const GivenOption &given) { return given.name == name; });
    }

    bool HasAction() const {
        return std::any_of(m_line.options.begin(), m_line.options.end(),
                           [&](const GivenOption &given) { return IsAction(given.name); });
    }

    /// Whether the line has another option of the same kind, of which there may be one only.
    bool HasRival(const OptionFacts &option) const {
        const auto group = option.effect.group;
        return group != ScalerIspFacts::Group::None &&
               std::any_of(m_line.options.begin(), m_line.options.end(),
                           [&](const GivenOption &given) {
                               return given.name != option.name &&
                                      ScalerIspFacts::FindOption(given.name)->effect.group == group;
                           });
    }

    GivenLine m_line;
    Advice m_advice;
};

} // namespace

std::vector<Alternative> MissingParts(std::string_view expression, GivenLine line, Advice advice) {
    return Reader(line, advice).Read(expression);
}

} // namespace ispctl
