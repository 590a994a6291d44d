#include "LibraryArguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace ispctl {

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

} // namespace ispctl
