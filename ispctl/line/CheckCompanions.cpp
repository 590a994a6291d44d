#include "line/Checks.h"

#include <algorithm>

#include "line/NeedText.h"

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

/// What an option lacks without those that it goes with.
struct Loss {
    std::string_view option;
    std::string_view text;
    bool makesUseless; ///< nobody can want the option alone
};

constexpr Loss kLosses[] = {
    {"boot", "the boot firmware is not programmed", true},
    {"sign", "nothing is signed", true},
    {"verify", "nothing is verified", true},
    {"sw", "no key is checked", false},
    {"newboot", "the plug-in is told of new boot code, but none is programmed", false},
    {"ispuser", "no user flag is passed to the plug-in", false},
    {"recordver", "the plug-in is not told where the version is", false},
    {"fwbin", "no firmware file is passed to the plug-in", false},
    {"fwbincmd", "no firmware file is passed to the plug-in", false},
    {"userdefinedinfo", "the plug-in is not told which information is wanted", false},
    {"edpisp", "the plug-in is not told whether to program or to read", false},
};

// What these go with has a default, or they have a use of their own.
constexpr std::string_view kCompleteAlone[] = {"dumpflash", "settingfile"};

/// Of the signature actions only the type counts here: what it needs in its turn is checked with
/// it.
std::string_view CompanyOf(const OptionFacts &option) {
    const auto *action = ScalerIspFacts::FindAction(option.name);
    const bool isOfSignature = action != nullptr && action->files == "SIGNATURE";
    return isOfSignature ? "sw|hw" : option.goesWith;
}

bool HasFinding(LineUnderCheck &line, const GivenArgument &given) {
    return std::any_of(line.Findings().begin(), line.Findings().end(), [&](const Finding &finding) {
        return finding.severity != FindingClass::Warning && finding.argument == given.position;
    });
}

void CheckAlone(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = *line.Options()[index];
    const std::string_view company = CompanyOf(*given.option);
    const NeedText need = DescribeNeed(line, index, company);
    const auto *loss = std::find_if(std::begin(kLosses), std::end(kLosses), [&](const Loss &row) {
        return row.option == given.option->name;
    });
    const bool isKnown = loss != std::end(kLosses);
    const FindingWords words{.allowed = need.words,
                             .example = need.example,
                             .detail = isKnown ? std::string(loss->text)
                                               : "alone it is only passed to the plug-in"};
    if (isKnown && loss->makesUseless) {
        line.Report("incomplete-option", given, Underline::Name, words);
    } else if (!need.words.empty()) {
        line.Report("missing-companion", given, Underline::Name, words);
    } else {
        line.Report("unused-option", given, Underline::Name, {.detail = need.detail});
    }
}

} // namespace

void CheckCompanions(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Options().size() && line.Action() != nullptr; ++i) {
        const GivenArgument &given = *line.Options()[i];
        const std::string_view company = CompanyOf(*given.option);
        const bool isComplete = company.empty() || line.HoldsFor(i, company) ||
                                std::find(std::begin(kCompleteAlone), std::end(kCompleteAlone),
                                          given.option->name) != std::end(kCompleteAlone);
        if (!isComplete && line.IsUsable(i) && !line.IsReplaced(i) && !HasFinding(line, given)) {
            CheckAlone(line, i);
        }
    }
}

} // namespace ispctl
