#include "line/UnexpandedPath.h"

#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace ispctl {
namespace {

constexpr std::string_view kNameCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";

std::string ValueOf(const std::string &variable) {
    const char *value = std::getenv(variable.c_str());
    return value != nullptr ? value : "";
}

/// A variable as a shell writes it, $NAME or ${NAME}.
struct Variable {
    std::string name;
    std::size_t begin = 0;
    std::size_t end = 0; ///< 0: there is none
};

Variable FindVariable(std::string_view path, std::size_t from) {
    for (std::size_t at = path.find('$', from); at != std::string_view::npos;
         at = path.find('$', at + 1)) {
        const bool isBraced = path.substr(at + 1).starts_with('{');
        const std::size_t begin = at + (isBraced ? 2 : 1);
        const std::size_t end =
            std::min(path.find_first_not_of(kNameCharacters, begin), path.size());
        const bool isClosed = !isBraced || path.substr(end).starts_with('}');
        if (end > begin && isClosed) {
            return {std::string(path.substr(begin, end - begin)), at, end + (isBraced ? 1 : 0)};
        }
    }
    return {};
}

UnexpandedPath OfHome(const std::string &path) {
    if (!path.starts_with('~')) {
        return {};
    }
    const std::string home = ValueOf("HOME");
    const bool isOwn = path.size() == 1 || path[1] == '/';
    return {fmt::format("no shell has replaced \"{}\", which stands for a home directory",
                        path.substr(0, path.find('/'))),
            isOwn && !home.empty() ? home + path.substr(1) : ""};
}

UnexpandedPath OfVariables(const std::string &path) {
    UnexpandedPath found;
    bool isKnown = true;
    std::size_t copied = 0;
    for (Variable variable = FindVariable(path, 0); variable.end > 0;
         variable = FindVariable(path, copied)) {
        const std::string value = ValueOf(variable.name);
        if (found.reason.empty() || (isKnown && value.empty())) {
            found.reason =
                fmt::format("no shell has replaced the variable {}{}",
                            path.substr(variable.begin, variable.end - variable.begin),
                            value.empty() ? ", which has no value in this environment either" : "");
        }
        isKnown = isKnown && !value.empty();
        found.expanded += path.substr(copied, variable.begin - copied) + value;
        copied = variable.end;
    }
    found.expanded += path.substr(copied);
    if (copied == 0 || !isKnown) {
        found.expanded.clear();
    }
    return found;
}

UnexpandedPath OfWindows(const std::string &path) {
    const std::size_t begin = path.find('%');
    const std::size_t end =
        begin != std::string::npos ? path.find_first_not_of(kNameCharacters, begin + 1) : begin;
    if (end != std::string::npos && path[end] == '%' && end > begin + 1) {
        return {fmt::format("{} is a variable of Windows, which no shell replaces here",
                            path.substr(begin, end + 1 - begin)),
                ""};
    }
    const std::string_view letters = kNameCharacters.substr(0, 52);
    const bool hasDrive = path.size() > 2 && letters.find(path[0]) != std::string_view::npos &&
                          path[1] == ':' && (path[2] == '\\' || path[2] == '/');
    if (hasDrive || path.starts_with("\\\\")) {
        return {"this is a path of Windows, which leads nowhere on this system", ""};
    }
    return {};
}

} // namespace

UnexpandedPath FindUnexpanded(const std::string &path) {
    for (const auto find : {OfHome, OfVariables, OfWindows}) {
        if (UnexpandedPath found = find(path); !found.reason.empty()) {
            return found;
        }
    }
    return {};
}

} // namespace ispctl
