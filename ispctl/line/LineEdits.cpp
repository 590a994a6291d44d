#include "line/LineEdits.h"

#include <cstddef>

namespace ispctl {
namespace {

auto At(ArgumentList &arguments, std::size_t position) {
    return arguments.begin() + static_cast<std::ptrdiff_t>(position);
}

} // namespace

ArgumentList WithValue(ArgumentList arguments, const GivenArgument &given, std::string_view value) {
    std::string &argument = arguments[given.valuePosition];
    argument = given.valuePosition == given.position ? given.typed + "=" + std::string(value)
                                                     : std::string(value);
    return arguments;
}

ArgumentList WithName(ArgumentList arguments, const GivenArgument &given, std::string_view typed) {
    arguments[given.position].replace(0, given.typed.size(), typed);
    return arguments;
}

ArgumentList Without(ArgumentList arguments, const GivenArgument &given) {
    arguments.erase(At(arguments, given.position), At(arguments, given.valuePosition + 1));
    return arguments;
}

ArgumentList WithBefore(ArgumentList arguments, const GivenArgument &given,
                        const ArgumentList &added) {
    arguments.insert(At(arguments, given.position), added.begin(), added.end());
    return arguments;
}

ArgumentList WithAfter(ArgumentList arguments, const GivenArgument &given,
                       const ArgumentList &added) {
    arguments.insert(At(arguments, given.valuePosition + 1), added.begin(), added.end());
    return arguments;
}

} // namespace ispctl
