#include "line/FittingExample.h"

#include <algorithm>
#include <fmt/format.h>

#include "line/ValueForm.h"

namespace ispctl {
namespace {

// More values than this are no choice of kinds but a quantity, of which the needs know nothing.
constexpr std::int64_t kMostKinds = 8;

bool Fits(const LineUnderCheck &line, const GivenArgument &given, const std::string &value) {
    std::vector<ScalerIspFacts::GivenOption> options(line.Facts());
    std::size_t index = 0;
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (line.Options()[i] == &given) {
            options[i].value = value;
            index = i;
        }
    }
    return HasNeeds(*given.option, ScalerIspFacts::GivenLine{options, index});
}

} // namespace

std::string FittingExample(const LineUnderCheck &line, const GivenArgument &given) {
    const ValueForm form = FormOf(*given.option);
    std::string value = ExampleValue(*given.option);
    const bool isOfKinds = form.kind == ValueForm::Kind::Number && form.isBounded &&
                           form.last - form.first < kMostKinds;
    for (std::int64_t i = form.first; isOfKinds && i <= form.last; ++i) {
        value = Fits(line, given, value) ? value : std::to_string(i);
    }
    return Fits(line, given, value) ? fmt::format("--{} {}", given.option->name, value)
                                    : ExampleOf(*given.option);
}

} // namespace ispctl
