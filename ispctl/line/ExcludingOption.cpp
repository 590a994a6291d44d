#include "line/ExcludingOption.h"

#include <algorithm>

namespace ispctl {

using ScalerIspFacts::GivenOption;
using ScalerIspFacts::OptionFacts;

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
