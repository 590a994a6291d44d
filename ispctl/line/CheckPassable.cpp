#include "line/CheckPassable.h"

#include <algorithm>

#include "Utf8.h"
#include "line/FindingTable.h"
#include "line/GivenArguments.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

Finding About(Finding finding, const std::vector<std::string> &arguments, std::size_t position) {
    finding.argument = position;
    finding.length = arguments[position].size();
    return finding;
}

/// The option whose value this argument is, or null.
const GivenArgument *OptionOfValue(const std::vector<GivenArgument> &all, std::size_t position) {
    const auto found = std::find_if(all.begin(), all.end(), [&](const GivenArgument &given) {
        return given.option != nullptr && given.value && given.position != position &&
               given.valuePosition == position;
    });
    return found != all.end() ? &*found : nullptr;
}

Finding OfEmpty(const std::vector<std::string> &arguments, const std::vector<GivenArgument> &all,
                std::size_t position) {
    if (const GivenArgument *given = OptionOfValue(all, position)) {
        return About(MakeFinding("empty-value", {.option = given->typed,
                                                 .allowed = AllowedValue(*given->option),
                                                 .example = ExampleOf(*given->option)}),
                     arguments, position);
    }
    Finding finding = MakeFinding("empty-argument", {.detail = std::to_string(position + 1)});
    finding.corrected = arguments;
    finding.corrected.erase(finding.corrected.begin() + static_cast<std::ptrdiff_t>(position));
    return About(std::move(finding), arguments, position);
}

} // namespace

std::vector<Finding> CheckPassable(const std::vector<std::string> &arguments,
                                   const std::string &error) {
    const std::vector<GivenArgument> all = ReadGivenArguments(arguments);
    std::vector<Finding> findings;
    bool isExplained = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.empty()) {
            findings.push_back(OfEmpty(arguments, all, i));
            isExplained = true;
        } else if (!isExplained &&
                   (argument.find('"') != std::string::npos || !WideFromUtf8(argument))) {
            // The reason is about the first of them.
            findings.push_back(About(
                MakeFinding("not-passable", {.value = argument, .detail = error}), arguments, i));
            isExplained = true;
        }
    }
    if (findings.empty()) {
        findings.push_back(MakeFinding("not-passable", {.detail = error}));
    }
    return findings;
}

} // namespace ispctl
