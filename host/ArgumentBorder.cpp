#include "ArgumentBorder.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace ispctl {

std::vector<std::string> TakeForeign(const CLI::App &command, std::vector<std::string> &arguments) {
    std::size_t border = 0;
    while (border < arguments.size()) {
        const std::string &argument = arguments[border];
        const auto equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const CLI::Option *option =
            argument.starts_with("-") ? command.get_option_no_throw(name) : nullptr;
        if (option == nullptr) {
            break;
        }
        const bool valueFollows = option->get_expected_min() > 0 && equals == std::string::npos;
        border += valueFollows ? 2 : 1;
    }
    border = std::min(border, arguments.size());
    const auto begin = arguments.begin() + static_cast<std::ptrdiff_t>(border);
    const bool marked = begin != arguments.end() && *begin == "--";
    std::vector<std::string> foreign(begin + (marked ? 1 : 0), arguments.end());
    arguments.erase(begin, arguments.end());
    return foreign;
}

} // namespace ispctl
