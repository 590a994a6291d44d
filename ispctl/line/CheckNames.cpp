#include "line/Checks.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <sstream>
#include <system_error>

#include "line/LikelyOptions.h"
#include "line/OwnOptions.h"
#include "line/ShellQuote.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using Kind = GivenArgument::Kind;
using ScalerIspFacts::OptionFacts;

std::string AndItsValue(const GivenArgument *value) {
    return value != nullptr ? fmt::format(", and \"{}\" after it", value->typed) : "";
}

/// With the likely options as probes: whichever was meant, findings that it would not have follow.
void ReportLikely(LineUnderCheck &line, std::size_t index, FindingName name, FindingWords words,
                  const std::vector<std::string> &likely) {
    const GivenArgument &given = line.Given()[index];
    if (likely.size() == 1) {
        words.other = likely.front();
    }
    Finding &finding = line.Report(name, given, Underline::Name, words);
    if (likely.size() == 1) {
        finding.corrected = WithName(line.Arguments(), given, words.other);
    }
    for (const std::string &option : likely) {
        line.AddProbe(WithName(line.Arguments(), given, option));
    }
}

constexpr std::size_t kMostNamed = 4;

/// RETURNS whether the argument is an option with what belongs after it, in one pair of quotes.
bool ReportQuotedWords(LineUnderCheck &line, const GivenArgument &given) {
    std::istringstream text(given.typed);
    const ArgumentList words{std::istream_iterator<std::string>(text), {}};
    const std::string name = words.empty() ? "" : words.front().substr(0, words.front().find('='));
    if (words.size() < 2 || ScalerIspFacts::FindOption(WithoutDashes(name)) == nullptr) {
        return false;
    }
    ArgumentList corrected = line.Arguments();
    const auto at = corrected.begin() + static_cast<std::ptrdiff_t>(given.position);
    corrected.insert(corrected.erase(at), words.begin(), words.end());
    line.Report("quoted-words", given, Underline::Name,
                {.example = fmt::format("{}", fmt::join(words, " "))})
        .corrected = corrected;
    line.AddProbe(std::move(corrected));
    return true;
}

void CheckUnknown(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    if (ReportQuotedWords(line, given)) {
        return;
    }
    if (ReportOwnOption(line, index, WithoutDashes(given.typed))) {
        return;
    }
    FindingWords words;
    words.detail = AndItsValue(MeantValue(line, index));
    std::vector<std::string> likely = LikelyOptions(line, index);
    likely.resize(std::min(likely.size(), kMostNamed));
    words.allowed = JoinWithOr(likely);
    ReportLikely(line, index, "unknown-option", words, likely);
}

void CheckAmbiguous(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    std::vector<std::string> names;
    for (const OptionFacts &option : ScalerIspFacts::kOptions) {
        if (option.name.starts_with(WithoutDashes(given.typed))) {
            names.push_back("--" + std::string(option.name));
        }
    }
    std::vector<std::string> likely = LikelyOptions(line, index);
    FindingWords words{.example = likely.front(), .detail = AndItsValue(MeantValue(line, index))};
    if (names.size() > kMostNamed) {
        words.allowed = fmt::format("{} options, such as ", names.size());
        names.assign(likely.begin(), likely.begin() + static_cast<std::ptrdiff_t>(
                                                          std::min(likely.size(), kMostNamed)));
    }
    words.allowed += JoinWithOr(names);
    likely.resize(std::min(likely.size(), kMostNamed));
    ReportLikely(line, index, "ambiguous-option", words, likely);
}

/// The caller's file that has this name, or else the library's; empty if there is none.
std::string ExistingFile(const LineUnderCheck &line, const std::string &name) {
    std::error_code ignored;
    const fs::path callers = line.Context().callerDirectory / name;
    if (fs::is_regular_file(callers, ignored)) {
        return callers.string();
    }
    return fs::is_regular_file(line.Context().libraryDirectory / name, ignored) ? name : "";
}

/// ARGS with a firmware option before a file whose option was forgotten; empty if the line has no
/// use for one, or has one.
ArgumentList WithFirmwareOption(const LineUnderCheck &line, const GivenArgument &given,
                                const std::string &file) {
    constexpr std::string_view kName = "fw";
    std::vector<ScalerIspFacts::GivenOption> options(line.Facts());
    options.push_back({kName, file});
    const ScalerIspFacts::GivenLine with{options, options.size() - 1};
    if (file.empty() || line.Holds("FIRMWARE") ||
        !HasNeeds(*ScalerIspFacts::FindOption(kName), with)) {
        return {};
    }
    ArgumentList arguments = WithBefore(line.Arguments(), given, {"--" + std::string(kName)});
    arguments[given.position + 1] = file;
    // Nothing is an option after "--".
    const std::vector<GivenArgument> read = ReadGivenArguments(arguments);
    const bool isRead = std::any_of(read.begin(), read.end(), [&](const GivenArgument &argument) {
        return argument.kind == Kind::Option && argument.position == given.position;
    });
    return isRead ? arguments : ArgumentList();
}

void CheckNonOption(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    if (index > 0 && MeantValue(line, index - 1) == &given &&
        (line.Given()[index - 1].kind == Kind::Unknown ||
         line.Given()[index - 1].kind == Kind::Ambiguous)) {
        return; // reported with the option
    }
    FindingWords words{.value = given.typed};
    ArgumentList corrected;
    const OptionFacts *option = ScalerIspFacts::FindOption(WithoutDashes(given.typed));
    const bool hasValue =
        index + 1 < line.Given().size() && line.Given()[index + 1].kind == Kind::NonOption;
    if (option != nullptr && (!option->takesValue || hasValue) && !given.typed.starts_with('-')) {
        words.other = "--" + std::string(option->name);
        corrected = WithName(line.Arguments(), given, words.other);
    } else {
        const std::string file = ExistingFile(line, given.typed);
        corrected = WithFirmwareOption(line, given, file);
        words.other = corrected.empty() ? "" : "--fw " + QuoteForShell(file);
    }
    line.Report("leftover-argument", given, Underline::Name, words).corrected = corrected;
    if (!corrected.empty()) {
        line.AddProbe(std::move(corrected));
    }
}

void CheckRepeated(LineUnderCheck &line, std::size_t index) {
    const auto &options = line.Options();
    const GivenArgument &given = *options[index];
    const auto end = options.begin() + static_cast<std::ptrdiff_t>(index);
    const auto first = std::find_if(options.begin(), end, [&](const GivenArgument *earlier) {
        return earlier->option == given.option;
    });
    if (first == end) {
        return;
    }
    const bool isSameValue = (*first)->value == given.value;
    const auto &effect = given.option->effect;
    const ArgumentList corrected = Without(line.Arguments(), given);
    if (effect.kind == ScalerIspFacts::Kind::Search) {
        line.Report("repeated-file", given, Underline::Name, {}).corrected = corrected;
    } else if (effect.kind == ScalerIspFacts::Kind::Firmware && isSameValue) {
        line.Report("repeated-file", given, Underline::Name, {}).corrected = corrected;
    } else if (effect.kind == ScalerIspFacts::Kind::Firmware) {
        for (const OptionFacts &other : ScalerIspFacts::kOptions) {
            if (other.effect.kind == effect.kind && line.Find(other.name) == nullptr) {
                const std::string name = "--" + std::string(other.name);
                line.Report("repeated-file", given, Underline::Name,
                            {.other = name, .example = name + " " + QuoteForShell(*given.value)});
                return;
            }
        }
        line.Report("repeated-file", given, Underline::Name, {});
    } else {
        line.Report("repeated-option", given, Underline::Name,
                    {.detail = given.option->takesValue ? "; the last value counts" : ""});
    }
}

void CheckOption(LineUnderCheck &line, const GivenArgument &given) {
    const std::string name = given.option != nullptr ? "--" + std::string(given.option->name) : "";
    if (given.kind == Kind::MissingValue) {
        line.Report("missing-value", given, Underline::Name,
                    {.allowed = AllowedValue(*given.option), .example = ExampleOf(*given.option)});
        line.AddProbe(WithAfter(line.Arguments(), given, {ExampleValue(*given.option)}));
    } else if (given.kind == Kind::UnwantedValue) {
        ArgumentList corrected = line.Arguments();
        corrected[given.position] = name;
        line.Report("unwanted-value", given, Underline::Name, {}).corrected = corrected;
        line.AddProbe(std::move(corrected));
    }
    if (given.option != nullptr && given.abbreviated) {
        line.Report("abbreviated-option", given, Underline::Name, {.other = name}).corrected =
            WithName(line.Arguments(), given, name);
    }
}

} // namespace

void CheckNames(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Given().size(); ++i) {
        if (line.IsExplained(line.Given()[i].position)) {
            continue;
        }
        switch (line.Given()[i].kind) {
        case Kind::Unknown:
            CheckUnknown(line, i);
            break;
        case Kind::Ambiguous:
            CheckAmbiguous(line, i);
            break;
        case Kind::NonOption:
            CheckNonOption(line, i);
            break;
        default:
            CheckOption(line, line.Given()[i]);
        }
    }
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        CheckRepeated(line, i);
    }
}

} // namespace ispctl
