#include "line/OwnOptions.h"

#include <algorithm>
#include <fmt/format.h>
#include <span>
#include <string>
#include <vector>

#include "line/LikelyOptions.h"
#include "line/NearestName.h"

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

/// An option of ispctl itself that people write after those of the library.
struct OwnOption {
    std::string_view name;
    std::string_view command; ///< the only one that has it; empty: several do
};
constexpr std::string_view kNoCommand = "none";

// An unknown option that is as near to one of these as to one of the library is one of these: the
// library that was meant would otherwise not be opened.
constexpr OwnOption kOwnOptions[] = {
    {"virtual", ""},     {"json", ""},       {"help", ""},
    {"log", "run"},      {"lib", ""},        {"allow", "run"},
    {"verbatim", "run"}, {"dry-run", "run"}, {"version", kNoCommand},
    {"chip", ""},
};

// Of these the library's are the more likely ones.
constexpr OwnOption kLessLikely[] = {
    {"svg", "explain"},  {"html", "explain"},     {"record", "explain"},      {"decode", "explain"},
    {"diff", "explain"}, {"all", "explain"},      {"station", "run"},         {"tag", "run"},
    {"wait", "run"},     {"private-copy", "run"}, {"no-private-copy", "run"}, {"backup", "run"},
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
        for (const OwnOption &own : kLessLikely) {
            all.push_back(own.name);
        }
        return all;
    }();
    return names;
}

const OwnOption *FindOwnOption(std::string_view name) {
    for (const std::span<const OwnOption> options :
         {std::span<const OwnOption>(kOwnOptions), std::span<const OwnOption>(kLessLikely)}) {
        for (const OwnOption &own : options) {
            if (own.name == name) {
                return &own;
            }
        }
    }
    return nullptr;
}

/// The option of ispctl that a name most likely stands for; null if it is one of the library.
const OwnOption *MeantOption(std::string_view name) {
    if (const OwnOption *own = FindOwnOption(name)) {
        return own;
    }
    // An abbreviation of --virtual must not become a run on the real library.
    constexpr std::size_t kFewest = 2;
    for (const OwnOption &own : kOwnOptions) {
        if (name.size() >= kFewest && own.name.starts_with(name)) {
            return &own;
        }
    }
    return FindOwnOption(NearestName(name, AllNames()));
}

/// Without a corrected line: what stands before the arguments is not known here, and a line without
/// --virtual would touch the device.
void Report(LineUnderCheck &line, std::size_t index, const OwnOption &own) {
    const GivenArgument &given = line.Given()[index];
    const std::string name = "--" + std::string(own.name);
    FindingWords words{.option = given.typed, .other = name};
    if (own.command == kNoCommand) {
        words.allowed = "ispctl " + name;
        words.detail = name + " of ispctl is written without a command";
    } else {
        const bool isExact = WithoutDashes(given.typed) == own.name;
        const std::string whose =
            fmt::format("{} of ispctl{}{}", name, own.command.empty() ? "" : " ", own.command);
        words.detail = isExact
                           ? whose + " is written right after the command"
                           : "did you mean " + whose + "? It is written right after the command";
    }
    line.Report("ispctl-option", given, Underline::Name, words);
    ArgumentList without = line.Arguments();
    const GivenArgument *value = MeantValue(line, index);
    const auto first = without.begin() + static_cast<std::ptrdiff_t>(given.position);
    without.erase(first, first + (value != nullptr ? 2 : 1));
    line.AddProbe(std::move(without));
}

} // namespace

std::string_view WithoutDashes(std::string_view typed) {
    typed.remove_prefix(std::min(typed.find_first_not_of('-'), typed.size()));
    return typed;
}

bool ReportOwnOption(LineUnderCheck &line, std::size_t index, std::string_view name) {
    const OwnOption *own = MeantOption(name);
    if (own != nullptr) {
        Report(line, index, *own);
    }
    return own != nullptr;
}

} // namespace ispctl
