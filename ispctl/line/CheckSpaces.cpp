#include "line/Checks.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>

#include "line/NamedFile.h"
#include "line/ShellQuote.h"
#include "line/Typography.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// A path that the shell split at its spaces.
struct SplitPath {
    std::string path;
    std::size_t words = 0; ///< how many arguments after the value belong to it
};

/// Nothing but options and their values follows what is left over of a path.
std::vector<std::string> WordsAfter(const LineUnderCheck &line, const GivenArgument &given) {
    std::vector<std::string> words;
    for (const GivenArgument &other : line.Given()) {
        const bool isNext = other.position == given.valuePosition + 1 + words.size();
        const bool isLeftOver =
            other.kind == GivenArgument::Kind::NonOption ||
            (other.kind == GivenArgument::Kind::Unknown && !other.typed.starts_with("--"));
        if (isNext && isLeftOver && WithPlainDashes(other.typed).first == 0) {
            words.push_back(line.Arguments()[other.position]);
        }
    }
    return words;
}

/// The longest existing path. If there is none: where the value has no ending and is no file, up to
/// the first word that has one.
SplitPath FindSplitPath(const LineUnderCheck &line, const GivenArgument &given) {
    const std::vector<std::string> words = WordsAfter(line, given);
    SplitPath existing;
    SplitPath plausible;
    std::string path = *given.value;
    const bool isCut = !path.empty() && !fs::path(path).has_extension() &&
                       !ExistsForLibraryOrCaller(line.Context(), path);
    for (std::size_t i = 0; i < words.size(); ++i) {
        path += " " + words[i];
        if (ExistsForLibraryOrCaller(line.Context(), path)) {
            existing = {path, i + 1};
        }
        if (isCut && plausible.words == 0 && fs::path(words[i]).has_extension()) {
            plausible = {path, i + 1};
        }
    }
    return existing.words > 0 ? existing : plausible;
}

void CheckPath(LineUnderCheck &line, const GivenArgument &given) {
    const SplitPath split = FindSplitPath(line, given);
    if (split.words == 0) {
        return;
    }
    std::string left;
    for (std::size_t i = 1; i <= split.words; ++i) {
        const std::size_t position = given.valuePosition + i;
        left += fmt::format("{}\"{}\"", i > 1 ? ", " : "", line.Arguments()[position]);
        line.MarkExplained(position);
    }
    line.MarkExplained(given.valuePosition);
    ArgumentList corrected = WithValue(line.Arguments(), given, split.path);
    const auto first = corrected.begin() + static_cast<std::ptrdiff_t>(given.valuePosition + 1);
    corrected.erase(first, first + static_cast<std::ptrdiff_t>(split.words));
    line.Report("unquoted-path", given, Underline::Value,
                {.example = given.typed + " " + QuoteForShell(split.path),
                 .detail = left + (split.words > 1 ? " are" : " is")})
        .corrected = corrected;
    line.AddProbe(std::move(corrected));
}

} // namespace

void CheckSpaces(LineUnderCheck &line) {
    for (const GivenArgument *given : line.Options()) {
        if (given->value && !given->value->starts_with("--") &&
            FormOf(*given->option).kind == ValueForm::Kind::File) {
            CheckPath(line, *given);
        }
    }
}

} // namespace ispctl
