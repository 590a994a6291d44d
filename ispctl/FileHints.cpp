#include "FileHints.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <system_error>

#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

// In options.def the form "file" marks a path that the library resolves against its own directory;
// other forms, such as that of --subcert and --dumpname, do not.
bool IsFileForm(const ScalerIspFacts::OptionFacts &option) {
    return option.form == "file";
}

// An abbreviation counts if it could be such an option: only the library decides whether it is
// unambiguous.
bool IsFileOption(std::string_view name) {
    if (const auto *option = ScalerIspFacts::FindOption(name); option != nullptr) {
        return IsFileForm(*option);
    }
    return !name.empty() &&
           std::any_of(ScalerIspFacts::kOptions.begin(), ScalerIspFacts::kOptions.end(),
                       [&](const ScalerIspFacts::OptionFacts &option) {
                           return IsFileForm(option) && option.name.starts_with(name);
                       });
}

bool IsFile(const fs::path &path) {
    std::error_code ignored;
    return fs::exists(path, ignored) && !fs::is_directory(path, ignored);
}

std::string HintFor(std::string_view option, const std::string &name,
                    const fs::path &libraryDirectory, const fs::path &callerDirectory) {
    const fs::path here = callerDirectory / name;
    const fs::path there = libraryDirectory / name;
    std::error_code ignored;
    if (name.empty() || fs::path(name).is_absolute() || !IsFile(here) ||
        fs::equivalent(here, there, ignored)) {
        return "";
    }
    if (IsFile(there)) {
        return fmt::format("{} {} refers to {}; to use the file in the current directory, pass {}",
                           option, name, there.string(), here.string());
    }
    return fmt::format("{} {} refers to a file in the library's directory {}; to use the file in "
                       "the current directory, pass {}",
                       option, name, libraryDirectory.string(), here.string());
}

} // namespace

std::vector<std::string> FileHints(const std::vector<std::string> &arguments,
                                   const fs::path &libraryDirectory,
                                   const fs::path &callerDirectory) {
    std::vector<std::string> hints;
    // Only the library knows which argument is the value of which option, so every pair is checked.
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
        std::string hint = HintFor(option, value, libraryDirectory, callerDirectory);
        if (!hint.empty()) {
            hints.push_back(std::move(hint));
        }
    }
    return hints;
}

} // namespace ispctl
