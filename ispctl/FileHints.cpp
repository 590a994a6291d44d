#include "FileHints.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string_view>
#include <system_error>

namespace ispctl {
namespace {

namespace fs = std::filesystem;

// Options whose value the library looks for in its own folder. Not here: --subcert and --dumpname,
// which reach the plug-in as typed.
constexpr std::array<std::string_view, 16> kFileOptions{
    "fw",  "fw1", "fw2",  "fw3",      "fw4",    "fw5",    "fw6",        "fw7",
    "fw8", "fw9", "boot", "signfile", "vkfile", "skfile", "nextvkfile", "settingfile",
};

// The library takes abbreviations; whether one is unambiguous is its own affair.
bool IsFileOption(std::string_view name) {
    return !name.empty() && std::any_of(kFileOptions.begin(), kFileOptions.end(),
                                        [&](std::string_view o) { return o.starts_with(name); });
}

bool IsFile(const fs::path &path) {
    std::error_code ignored;
    return fs::exists(path, ignored) && !fs::is_directory(path, ignored);
}

std::string HintFor(std::string_view option, const std::string &name, const fs::path &libraryFolder,
                    const fs::path &callerFolder) {
    const fs::path here = callerFolder / name;
    const fs::path there = libraryFolder / name;
    std::error_code ignored;
    if (name.empty() || fs::path(name).is_absolute() || !IsFile(here) ||
        fs::equivalent(here, there, ignored)) {
        return "";
    }
    if (IsFile(there)) {
        return fmt::format("{} {}: the library takes {}; for the file of this folder write {}",
                           option, name, there.string(), here.string());
    }
    return fmt::format("{} {}: the library looks for it in its own folder, {}; for the file of "
                       "this folder write {}",
                       option, name, libraryFolder.string(), here.string());
}

} // namespace

std::vector<std::string> FileHints(const std::vector<std::string> &arguments,
                                   const fs::path &libraryFolder, const fs::path &callerFolder) {
    std::vector<std::string> hints;
    // Which argument is a value of which option is the library's affair, so each pair is looked at.
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const std::string_view option = argument.substr(0, argument.find('='));
        if (!option.starts_with("--") || !IsFileOption(option.substr(2))) {
            continue;
        }
        std::string value;
        if (option.size() < argument.size()) {
            value = argument.substr(option.size() + 1);
        } else if (i + 1 < arguments.size()) {
            value = arguments[i + 1];
        }
        std::string hint = HintFor(option, value, libraryFolder, callerFolder);
        if (!hint.empty()) {
            hints.push_back(std::move(hint));
        }
    }
    return hints;
}

} // namespace ispctl
