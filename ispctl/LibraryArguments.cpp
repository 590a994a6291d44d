#include "LibraryArguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "line/NearestName.h"
#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

bool BeginsLibraryOption(std::string_view name) {
    return std::any_of(
        std::begin(ScalerIspFacts::kOptions), std::end(ScalerIspFacts::kOptions),
        [&](const ScalerIspFacts::OptionFacts &option) { return option.name.starts_with(name); });
}

/// The command's option that a person means with this name; null if it may be one of the library.
const CLI::Option *MeantOption(const CLI::App &command, const std::string &typed) {
    if (!typed.starts_with("--") || typed.size() == 2) {
        return nullptr;
    }
    if (const CLI::Option *option = command.get_option_no_throw(typed)) {
        return option;
    }
    const std::string_view name = std::string_view(typed).substr(2);
    if (BeginsLibraryOption(name)) {
        return nullptr;
    }
    std::vector<std::string_view> known;
    for (const ScalerIspFacts::OptionFacts &option : ScalerIspFacts::kOptions) {
        known.push_back(option.name);
    }
    for (const CLI::Option *option : command.get_options()) {
        known.insert(known.end(), option->get_lnames().begin(), option->get_lnames().end());
    }
    const std::string_view nearest = NearestName(name, known);
    return nearest.empty() ? nullptr : command.get_option_no_throw("--" + std::string(nearest));
}

} // namespace

std::vector<std::string> SplitOffLibraryArguments(const CLI::App &command,
                                                  std::vector<std::string> &arguments) {
    std::size_t firstLibraryArgument = 0;
    while (firstLibraryArgument < arguments.size()) {
        const std::string &argument = arguments[firstLibraryArgument];
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const CLI::Option *option =
            argument.starts_with("-") ? command.get_option_no_throw(name) : nullptr;
        if (option == nullptr) {
            break;
        }
        const bool valueFollows = option->get_expected_min() > 0 && equals == std::string::npos;
        firstLibraryArgument += valueFollows ? 2 : 1;
    }
    firstLibraryArgument = std::min(firstLibraryArgument, arguments.size());
    const auto begin = arguments.begin() + static_cast<std::ptrdiff_t>(firstLibraryArgument);
    const bool marked = begin != arguments.end() && *begin == "--";
    std::vector<std::string> libraryArguments(begin + (marked ? 1 : 0), arguments.end());
    arguments.erase(begin, arguments.end());
    return libraryArguments;
}

std::size_t CountMisplacedOptions(const CLI::App &command,
                                  const std::vector<std::string> &libraryArguments) {
    std::size_t count = 0;
    while (count < libraryArguments.size()) {
        const std::string &argument = libraryArguments[count];
        const auto equals = argument.find('=');
        const CLI::Option *option = MeantOption(command, argument.substr(0, equals));
        if (option == nullptr) {
            break;
        }
        const bool valueFollows = option->get_expected_min() > 0 && equals == std::string::npos;
        count += valueFollows ? 2 : 1;
    }
    return std::min(count, libraryArguments.size());
}

} // namespace ispctl
