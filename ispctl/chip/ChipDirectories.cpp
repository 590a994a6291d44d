#include "chip/ChipDirectories.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <set>
#include <sstream>
#include <system_error>

#include "LibraryPaths.h"
#include "line/NearestName.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

constexpr const char *kPage = "the page chips.md shows how to make one";

std::string Variable(const char *name) {
    const char *value = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr ? value : "";
}

fs::path UserRoot() {
    const std::string home = Variable("HOME");
    return home.starts_with('/') ? fs::path(home) / ".local/share/scaler-isp/chips" : fs::path();
}

/// A chip is a single name, so that it cannot lead out of its root.
bool IsName(const std::string &name) {
    return !name.empty() && name.front() != '.' && name.find('/') == std::string::npos;
}

std::string JoinedRoots() {
    std::string text;
    for (const fs::path &root : ChipRoots()) {
        text += (text.empty() ? "" : " and ") + root.string();
    }
    return text.empty() ? "no directory" : text;
}

std::string Unknown(const std::string &name) {
    const std::vector<std::string> names = ChipNames();
    const std::vector<std::string_view> views(names.begin(), names.end());
    const std::string_view nearest = NearestName(name, views);
    std::string error = fmt::format("there is no chip {}", name);
    error += nearest.empty() ? "" : fmt::format("; did you mean {}?", nearest);
    if (names.empty()) {
        return error + fmt::format("; there are no chips in {}; {}", JoinedRoots(), kPage);
    }
    std::string list;
    for (const std::string &known : names) {
        list += (list.empty() ? "" : ", ") + known;
    }
    return error +
           fmt::format("{} there are {}, in {}", nearest.empty() ? ";" : "", list, JoinedRoots());
}

} // namespace

std::vector<fs::path> ChipRoots() {
    std::vector<fs::path> roots;
    std::istringstream given(Variable("SCALER_ISP_CHIPS"));
    for (std::string root; std::getline(given, root, ':');) {
        if (!root.empty()) {
            roots.push_back(fs::absolute(root));
        }
    }
    if (roots.empty()) {
        roots = {UserRoot(), "/opt/chips"};
        std::erase(roots, fs::path());
    }
    return roots;
}

std::vector<std::string> ChipNames() {
    std::set<std::string> names;
    for (const fs::path &root : ChipRoots()) {
        std::error_code error;
        for (fs::directory_iterator at(root, error), end; !error && at != end;
             at.increment(error)) {
            std::error_code ignored;
            const std::string name = at->path().filename().string();
            if (IsName(name) && at->is_directory(ignored)) {
                names.insert(name);
            }
        }
    }
    return {names.begin(), names.end()};
}

std::optional<fs::path> FindChipLibrary(const std::string &name, std::string &error) {
    if (!IsName(name)) {
        error = fmt::format("{} is not the name of a chip: it is one word without \"/\"; --lib "
                            "FILE opens a library by its path",
                            name.empty() ? "an empty string" : name);
        return std::nullopt;
    }
    for (const fs::path &root : ChipRoots()) {
        std::error_code ignored;
        if (!fs::is_directory(root / name, ignored)) {
            continue;
        }
        const fs::path library = root / name / InstalledLibraryPath().filename();
        if (fs::is_regular_file(library, ignored)) {
            return library;
        }
        error = fmt::format("the chip {} has no library: {} is missing; copy it there, {}", name,
                            library.string(), kPage);
        return std::nullopt;
    }
    error = Unknown(name);
    return std::nullopt;
}

bool IsInChipDirectory(const fs::path &library) {
    const fs::path root = library.parent_path().parent_path();
    const std::vector<fs::path> roots = ChipRoots();
    return std::any_of(roots.begin(), roots.end(), [&](const fs::path &chips) {
        std::error_code ignored;
        return fs::equivalent(chips, root, ignored);
    });
}

} // namespace ispctl
