#include "line/Checks.h"

#include <fmt/format.h>

#include "line/LikelyOptions.h"
#include "line/NamedFile.h"
#include "line/OwnOptions.h"
#include "line/ShellQuote.h"
#include "line/Typography.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

using Kind = GivenArgument::Kind;

std::string CodeOf(char32_t character) {
    return fmt::format("U+{:04X}", static_cast<std::uint32_t>(character));
}

void CheckValue(LineUnderCheck &line, const GivenArgument &given) {
    const Retyped retyped = WithoutQuotes(*given.value);
    const bool isFile = FormOf(*given.option).kind == ValueForm::Kind::File;
    if (retyped.first == 0 || retyped.meant.empty() ||
        (isFile && ExistsForLibraryOrCaller(line.Context(), *given.value))) {
        return;
    }
    // At the end only, it may be the apostrophe of a new name.
    if (IsWritten(line, *given.option) && given.value->starts_with(retyped.meant)) {
        return;
    }
    line.Report("typographic-quotes", given, Underline::Value,
                {.other = QuoteForShell(retyped.meant), .detail = CodeOf(retyped.first)})
        .corrected = WithValue(line.Arguments(), given, retyped.meant);
    line.MarkExplained(given.valuePosition);
}

/// What follows an option that was not recognised is left to the finding about it, unless that
/// option has no value.
void ExplainItsValue(LineUnderCheck &line, std::size_t index, std::string_view name) {
    const auto *option = ScalerIspFacts::FindOption(name);
    const GivenArgument *value = MeantValue(line, index);
    if (value != nullptr && (option == nullptr || option->takesValue) &&
        WithPlainDashes(value->typed).first == 0) {
        line.MarkExplained(value->position);
    }
}

void Report(LineUnderCheck &line, const GivenArgument &given, const Retyped &quotes,
            const Retyped &dashes) {
    const bool isDash = quotes.first == 0;
    ArgumentList corrected = line.Arguments();
    const FindingWords words{.value = corrected[given.position],
                             .other = QuoteForShell(dashes.meant),
                             .detail = CodeOf(isDash ? dashes.first : quotes.first)};
    corrected[given.position] = dashes.meant;
    line.Report(isDash ? FindingName("typographic-dash") : FindingName("typographic-quotes"), given,
                Underline::Name, words)
        .corrected = corrected;
    line.AddProbe(std::move(corrected));
}

/// Also if several names begin so: then the library's are meant.
bool IsOfLibrary(std::string_view name) {
    const auto read = ReadGivenArguments({"--" + std::string(name)});
    return read.front().kind != Kind::Unknown && read.front().kind != Kind::NonOption;
}

void CheckWord(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    const std::string &word = line.Arguments()[given.position];
    if (ExistsForLibraryOrCaller(line.Context(), word)) {
        return;
    }
    const Retyped quotes = WithoutQuotes(word);
    const Retyped dashes = WithPlainDashes(quotes.meant);
    const bool isOption = dashes.meant.starts_with("--");
    const std::string_view name =
        WithoutDashes(std::string_view(dashes.meant).substr(0, dashes.meant.find('=')));
    if ((quotes.first == 0 && dashes.first == 0) || name.empty()) {
        return;
    }
    if (!isOption || IsOfLibrary(name) || !ReportOwnOption(line, index, name)) {
        Report(line, given, quotes, dashes);
    }
    line.MarkExplained(given.position);
    if (isOption) {
        ExplainItsValue(line, index, name);
    }
}

} // namespace

void CheckTypography(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Given().size(); ++i) {
        const GivenArgument &given = line.Given()[i];
        if (line.IsExplained(given.position)) {
            continue;
        }
        if (given.kind == Kind::NonOption || given.kind == Kind::Unknown) {
            CheckWord(line, i);
        } else if (given.kind == Kind::Option && given.value &&
                   !line.IsExplained(given.valuePosition)) {
            CheckValue(line, given);
        }
    }
}

} // namespace ispctl
