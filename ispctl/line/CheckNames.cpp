#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>

#include "line/LikelyOptions.h"
#include "line/NearestName.h"
#include "line/ShellQuote.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

using Kind = GivenArgument::Kind;
using ScalerIspFacts::OptionFacts;

/// An option of ispctl itself that people write after those of the library.
struct OwnOption {
    std::string_view name;
    std::string_view command; ///< the only one that has it; empty: several do
};

// An unknown option that is as near to one of these as to one of the library is one of these: the
// library that was meant would otherwise not be opened.
constexpr OwnOption kOwnOptions[] = {
    {"virtual", ""},  {"json", ""},        {"help", ""},       {"log", "run"},  {"lib", ""},
    {"allow", "run"}, {"verbatim", "run"}, {"dry-run", "run"}, {"version", ""},
};

// Of these the library's are the more likely ones.
constexpr OwnOption kExplainOptions[] = {
    {"svg", "explain"},    {"html", "explain"}, {"record", "explain"},
    {"decode", "explain"}, {"diff", "explain"}, {"all", "explain"},
};

const std::vector<std::string_view> &AllNames() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        for (const OwnOption &own : kOwnOptions) {
            all.push_back(own.name);
        }
        for (const OptionFacts &option : ScalerIspFacts::kOptions) {
            all.push_back(option.name);
        }
        for (const OwnOption &own : kExplainOptions) {
            all.push_back(own.name);
        }
        return all;
    }();
    return names;
}

const OwnOption *FindOwnOption(std::string_view name) {
    for (const std::span<const OwnOption> options :
         {std::span<const OwnOption>(kOwnOptions), std::span<const OwnOption>(kExplainOptions)}) {
        for (const OwnOption &own : options) {
            if (own.name == name) {
                return &own;
            }
        }
    }
    return nullptr;
}

std::string_view WithoutDashes(std::string_view typed) {
    typed.remove_prefix(std::min(typed.find_first_not_of('-'), typed.size()));
    return typed;
}

/// Names of one unknown option: that of ispctl, or the nearest of the library.
std::string_view NearestOption(const GivenArgument &given) {
    const std::string_view name = WithoutDashes(given.typed);
    if (FindOwnOption(name) != nullptr) {
        return name;
    }
    // An abbreviation of --virtual must not become a run on the real library.
    constexpr std::size_t kFewest = 2;
    for (const OwnOption &own : kOwnOptions) {
        if (name.size() >= kFewest && own.name.starts_with(name)) {
            return own.name;
        }
    }
    return NearestName(name, AllNames());
}

std::string AndItsValue(const GivenArgument *value) {
    return value != nullptr ? fmt::format(", and \"{}\" after it", value->typed) : "";
}

/// Without a corrected line: what stands before the arguments is not known here, and a line without
/// --virtual would touch the device.
void ReportOwnOption(LineUnderCheck &line, std::size_t index, const OwnOption &own) {
    const GivenArgument &given = line.Given()[index];
    const std::string name = "--" + std::string(own.name);
    const std::string place = own.command.empty() ? " of ispctl" : " of ispctl ";
    line.Report("ispctl-option", given, Underline::Name,
                {.other = name, .detail = name + place + std::string(own.command)});
    ArgumentList without = line.Arguments();
    const GivenArgument *value = MeantValue(line, index);
    const auto first = without.begin() + static_cast<std::ptrdiff_t>(given.position);
    without.erase(first, first + (value != nullptr ? 2 : 1));
    line.AddProbe(std::move(without));
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

void CheckUnknown(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    if (const OwnOption *own = FindOwnOption(NearestOption(given))) {
        ReportOwnOption(line, index, *own);
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
    if (option != nullptr && !option->takesValue && !given.typed.starts_with('-')) {
        words.other = "--" + std::string(option->name);
        corrected = WithName(line.Arguments(), given, words.other);
    }
    line.Report("leftover-argument", given, Underline::Name, words).corrected = corrected;
    if (!corrected.empty()) {
        line.AddProbe(std::move(corrected));
    }
}

void CheckRepeated(LineUnderCheck &line, std::size_t index) {
    const auto &options = line.Options();
    const GivenArgument &given = *options[index];
    const bool isSecond =
        std::any_of(options.begin(), options.begin() + static_cast<std::ptrdiff_t>(index),
                    [&](const GivenArgument *earlier) { return earlier->option == given.option; });
    if (!isSecond) {
        return;
    }
    const auto &effect = given.option->effect;
    const ArgumentList corrected = Without(line.Arguments(), given);
    if (effect.kind == ScalerIspFacts::Kind::Search) {
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
