#include "line/Checks.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <system_error>

#include "line/NearestName.h"
#include "line/ShellQuote.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using Kind = GivenArgument::Kind;
using ScalerIspFacts::OptionFacts;

/// An option of ispctl itself that people write after those of the library.
struct OwnOption {
    std::string_view name;
    bool takesValue;
};

constexpr OwnOption kOwnOptions[] = {{"virtual", false},  {"json", false},    {"help", false},
                                     {"log", true},       {"lib", true},      {"allow", true},
                                     {"verbatim", false}, {"dry-run", false}, {"version", false}};

const std::vector<std::string_view> &AllNames() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        for (const OwnOption &own : kOwnOptions) {
            all.push_back(own.name);
        }
        for (const OptionFacts &option : ScalerIspFacts::kOptions) {
            all.push_back(option.name);
        }
        return all;
    }();
    return names;
}

const OwnOption *FindOwnOption(std::string_view name) {
    const auto *found = std::find_if(std::begin(kOwnOptions), std::end(kOwnOptions),
                                     [&](const OwnOption &own) { return own.name == name; });
    return found != std::end(kOwnOptions) ? found : nullptr;
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

bool HasJoinedValue(const LineUnderCheck &line, const GivenArgument &given) {
    return line.Arguments()[given.position].size() > given.typed.size();
}

/// The argument after an option that the library does not know, which was meant as its value.
const GivenArgument *MeantValue(const LineUnderCheck &line, std::size_t index) {
    const auto &all = line.Given();
    const bool follows = index + 1 < all.size() && all[index + 1].kind == Kind::NonOption &&
                         all[index + 1].position == all[index].position + 1;
    return follows && !HasJoinedValue(line, all[index]) ? &all[index + 1] : nullptr;
}

std::string AndItsValue(const GivenArgument *value) {
    return value != nullptr ? fmt::format(", and \"{}\" after it", value->typed) : "";
}

/// Without a corrected line: what stands before the arguments is not known here, and a line without
/// --virtual would touch the device.
void ReportOwnOption(LineUnderCheck &line, const GivenArgument &given, const OwnOption &own) {
    line.Report("ispctl-option", given, Underline::Name, {.other = "--" + std::string(own.name)});
}

void CheckUnknown(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    const std::string_view nearest = NearestOption(given);
    const GivenArgument *value = MeantValue(line, index);
    if (const OwnOption *own = FindOwnOption(nearest)) {
        ReportOwnOption(line, given, *own);
        return;
    }
    FindingWords words;
    words.detail = AndItsValue(value);
    if (nearest.empty()) {
        line.Report("unknown-option", given, Underline::Name, words);
        return;
    }
    words.other = "--" + std::string(nearest);
    const ArgumentList corrected = WithName(line.Arguments(), given, words.other);
    line.Report("unknown-option", given, Underline::Name, words).corrected = corrected;
}

void CheckAmbiguous(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = line.Given()[index];
    std::vector<std::string> names;
    for (const OptionFacts &option : ScalerIspFacts::kOptions) {
        if (option.name.starts_with(WithoutDashes(given.typed))) {
            names.push_back("--" + std::string(option.name));
        }
    }
    FindingWords words{.example = names.front(), .detail = AndItsValue(MeantValue(line, index))};
    constexpr std::size_t kShown = 4;
    if (names.size() > kShown) {
        words.allowed = fmt::format("{} options, such as ", names.size());
        names.resize(kShown);
    }
    words.allowed += JoinWithOr(names);
    line.Report("ambiguous-option", given, Underline::Name, words);
}

/// Both halves of a path with a space that was not quoted.
std::string UnquotedPath(const LineUnderCheck &line, const GivenArgument &given) {
    if (given.position == 0) {
        return "";
    }
    const std::string &before = line.Arguments()[given.position - 1];
    const std::string value = before.substr(
        before.find('=') == std::string::npos || !before.starts_with("--") ? 0
                                                                           : before.find('=') + 1);
    const std::string path = value + " " + given.typed;
    std::error_code ignored;
    const bool exists = fs::exists(line.Context().libraryDirectory / path, ignored) ||
                        fs::exists(line.Context().callerDirectory / path, ignored);
    return exists ? path : "";
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
    const std::string path = UnquotedPath(line, given);
    const OptionFacts *option = ScalerIspFacts::FindOption(WithoutDashes(given.typed));
    if (!path.empty()) {
        words.example = QuoteForShell(path);
        corrected = line.Arguments();
        corrected[given.position - 1] += " " + given.typed;
        corrected.erase(corrected.begin() + static_cast<std::ptrdiff_t>(given.position));
    } else if (option != nullptr && !option->takesValue && !given.typed.starts_with('-')) {
        words.other = "--" + std::string(option->name);
        corrected = WithName(line.Arguments(), given, words.other);
    }
    line.Report("leftover-argument", given, Underline::Name, words).corrected = corrected;
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
    } else if (given.kind == Kind::UnwantedValue) {
        ArgumentList corrected = line.Arguments();
        corrected[given.position] = name;
        line.Report("unwanted-value", given, Underline::Name, {}).corrected = corrected;
    }
    if (given.option != nullptr && given.abbreviated) {
        line.Report("abbreviated-option", given, Underline::Name, {.other = name}).corrected =
            WithName(line.Arguments(), given, name);
    }
}

} // namespace

void CheckNames(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Given().size(); ++i) {
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
