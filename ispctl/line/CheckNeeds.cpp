#include "line/Checks.h"

#include <fmt/format.h>

#include "line/ExcludingOption.h"
#include "line/NeedText.h"

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

/// Whether the library refuses the line for this option: without it the line is accepted, or
/// refused for something else.
bool IsReason(const LineUnderCheck &line, const GivenArgument &given) {
    if (!line.IsRefused()) {
        return false;
    }
    const ParsedLine &without = line.Parse(Without(line.Arguments(), given));
    return without.accepted || without.printed != line.Printed();
}

/// Without a parser: two of one kind are always refused.
bool AreOfOneKind(const GivenArgument &a, const GivenArgument &b) {
    using ScalerIspFacts::Kind;
    const auto &first = a.option->effect;
    const auto &second = b.option->effect;
    const auto isFirmware = [](const auto &effect) {
        return effect.kind == Kind::Firmware || effect.kind == Kind::Search;
    };
    return (first.group != ScalerIspFacts::Group::None && first.group == second.group) ||
           (isFirmware(first) && isFirmware(second));
}

bool IsExcludedAt(const LineUnderCheck &line, const GivenArgument &given) {
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        if (line.Options()[i] == &given) {
            return IsExcluded(*given.option, line.LineFor(i));
        }
    }
    return false;
}

void CheckExcluded(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = *line.Options()[index];
    const GivenArgument *other = ExcludingOption(line, index);
    if (other != nullptr && AreOfOneKind(given, *other)) {
        // Both exclude each other; one finding is enough, and it is about the later one.
        if (other->position < given.position || !IsExcludedAt(line, *other)) {
            line.Report("excluded-option", given, Underline::Name, {.other = other->typed});
        }
        return;
    }
    line.Report("no-effect", given, Underline::Name,
                {.detail = other != nullptr
                               ? fmt::format("next to {}, which makes the library ignore it",
                                             other->typed)
                               : "next to the other options of this line"})
        .corrected = Without(line.Arguments(), given);
}

/// Needs that do not hold. Signature options without a type have a check of their own.
void CheckUnmet(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = *line.Options()[index];
    const OptionFacts &option = *given.option;
    const bool isAction = ScalerIspFacts::FindAction(option.name) != nullptr;
    if (!isAction && line.HasFatal(given)) {
        return; // its value is wrong, so what it needs is not known
    }
    const NeedText need = DescribeNeed(line, index, option.needs);
    const FindingWords words{.example = need.example, .detail = need.detail};
    const bool isReason = isAction ? option.needs != "NEVER" : IsReason(line, given);
    if (isAction && !isReason) {
        return; // that it is always refused is said elsewhere
    }
    const ArgumentList corrected =
        need.isForOtherAction ? Without(line.Arguments(), given) : ArgumentList();
    line.Report(isReason ? FindingName("missing-need") : FindingName("no-effect"), given,
                Underline::Name, words)
        .corrected = corrected;
}

/// An expression without the demands for a side.
std::string WithoutSides(std::string_view expression) {
    std::string text(expression);
    for (const std::string_view side : {"after ", "before "}) {
        for (std::size_t at = text.find(side); at != std::string::npos; at = text.find(side)) {
            text.erase(at, side.size());
        }
    }
    return text;
}

/// Options that only have a full effect further left or right.
void CheckOrder(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = *line.Options()[index];
    const OptionFacts &option = *given.option;
    const bool isSided =
        option.goesWith.starts_with("after ") || option.goesWith.starts_with("before ");
    if (!isSided || HasCompany(option, line.LineFor(index))) {
        return;
    }
    const std::string text = WithoutSides(option.goesWith);
    if (ScalerIspFacts::Holds(text, line.LineFor(index))) {
        const GivenArgument *other = line.Find(text.substr(0, text.find('=')));
        ArgumentList moved = Without(line.Arguments(), given);
        const ArgumentList both(
            line.Arguments().begin() + static_cast<std::ptrdiff_t>(given.position),
            line.Arguments().begin() + static_cast<std::ptrdiff_t>(given.valuePosition + 1));
        const bool isAfter = option.goesWith.starts_with("after ");
        const std::size_t target =
            isAfter ? other->valuePosition + 1 - both.size() : other->position;
        moved.insert(moved.begin() + static_cast<std::ptrdiff_t>(target), both.begin(), both.end());
        line.Report("wrong-order", given, Underline::Name,
                    {.allowed = (isAfter ? "after " : "before ") + other->typed})
            .corrected = moved;
    } else if (option.effect.group == ScalerIspFacts::Group::MergeInfoRw) {
        const NeedText need = DescribeNeed(line, index, option.goesWith);
        line.Report("value-lost", given, Underline::Name,
                    {.example = need.example, .detail = need.detail});
    }
}

bool IsUntypedSignature(const LineUnderCheck &line, const OptionFacts &option) {
    return option.section == "signatures" && !line.Holds("sw|hw");
}

} // namespace

void CheckNeeds(LineUnderCheck &line) {
    const bool hasOneAction = line.Action() != nullptr;
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const OptionFacts &option = *line.Options()[i]->option;
        const bool isAction = ScalerIspFacts::FindAction(option.name) != nullptr;
        if ((isAction && !hasOneAction) || IsUntypedSignature(line, option)) {
            continue;
        }
        // Without the one action nobody knows what the others need.
        if (!HasNeeds(option, line.LineFor(i)) && !hasOneAction) {
            continue;
        }
        if (!HasNeeds(option, line.LineFor(i))) {
            CheckUnmet(line, i);
        } else if (!isAction && IsExcluded(option, line.LineFor(i))) {
            CheckExcluded(line, i);
        } else {
            CheckOrder(line, i);
        }
    }
}

} // namespace ispctl
