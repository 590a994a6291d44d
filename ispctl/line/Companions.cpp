#include "line/Companions.h"

#include <algorithm>

#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::GivenOption;
using ScalerIspFacts::OptionFacts;

/// The values that an expression may compare with.
std::vector<std::string> ValuesOf(const OptionFacts &option) {
    const ValueForm form = FormOf(option);
    if (form.kind == ValueForm::Kind::Keyword) {
        return {form.keywords.begin(), form.keywords.end()};
    }
    std::vector<std::string> values;
    constexpr std::int64_t kFew = 8;
    if (form.kind == ValueForm::Kind::Number && form.isBounded && form.last < kFew) {
        for (std::int64_t value = form.first; value <= form.last; ++value) {
            values.push_back(std::to_string(value));
        }
    } else {
        values.push_back(ExampleValue(option));
    }
    return values;
}

/// Whether the expression holds with one more option, on whichever side of the option.
bool HoldsWith(const LineUnderCheck &line, std::size_t index, std::string_view expression,
               const GivenOption &added) {
    std::vector<GivenOption> options(line.Facts());
    options.insert(options.begin(), added);
    if (ScalerIspFacts::Holds(expression, {options, index + 1})) {
        return true;
    }
    options.erase(options.begin());
    options.push_back(added);
    return ScalerIspFacts::Holds(expression, {options, index});
}

/// Nobody is advised to do without the verification of a signature.
bool AvoidsVerification(const OptionFacts &option) {
    return option.meaning.starts_with("factory mode");
}

/// Whether the line has another option of the same kind, of which there may be one only.
bool HasRival(const LineUnderCheck &line, const OptionFacts &option) {
    return option.effect.group != ScalerIspFacts::Group::None &&
           std::any_of(line.Options().begin(), line.Options().end(),
                       [&](const GivenArgument *given) {
                           return given->option->effect.group == option.effect.group;
                       });
}

bool IsAction(const OptionFacts &option) {
    return ScalerIspFacts::FindAction(option.name) != nullptr;
}

} // namespace

std::string MissingCompanion(const LineUnderCheck &line, std::size_t index,
                             std::string_view expression) {
    std::vector<std::string> found;
    constexpr std::size_t kShown = 4;
    const bool hasAction = line.Action() != nullptr;
    for (const OptionFacts &option : ScalerIspFacts::kOptions) {
        if (line.Find(option.name) != nullptr || AvoidsVerification(option) ||
            (IsAction(option) ? hasAction : HasRival(line, option))) {
            continue;
        }
        const std::vector<std::string> values = ValuesOf(option);
        std::vector<std::string> fitting;
        for (const std::string &value : values) {
            if (HoldsWith(line, index, expression, {option.name, value})) {
                fitting.push_back("--" + std::string(option.name) +
                                  (value.empty() ? "" : " " + value));
            }
        }
        // Where any value will do, one is enough.
        fitting.resize(fitting.size() == values.size() && !fitting.empty() ? 1 : fitting.size());
        found.insert(found.end(), fitting.begin(), fitting.end());
    }
    if (found.size() > kShown) {
        found.resize(1);
    }
    return JoinWithOr(found);
}

const GivenArgument *ExcludingOption(const LineUnderCheck &line, std::size_t index) {
    const OptionFacts &option = *line.Options()[index]->option;
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        std::vector<GivenOption> options(line.Facts());
        options.erase(options.begin() + static_cast<std::ptrdiff_t>(i));
        if (i != index &&
            !ScalerIspFacts::IsExcluded(option, {options, i < index ? index - 1 : index})) {
            return line.Options()[i];
        }
    }
    // With three of a kind, none of them is the reason alone.
    const auto group = option.effect.group;
    const auto rival =
        std::find_if(line.Options().begin(), line.Options().end(), [&](const GivenArgument *given) {
            return group != ScalerIspFacts::Group::None && given->option->effect.group == group &&
                   given->option != &option;
        });
    return rival != line.Options().end() ? *rival : nullptr;
}

} // namespace ispctl
