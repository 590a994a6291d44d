#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>

#include "line/NeedText.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;

/// What the library prints if its directory has no file that could be firmware.
constexpr std::string_view kNoCandidate = "Cannot find bin in current dir!";

/// What the library printed, as one line.
std::string AsOneLine(const std::string &printed) {
    std::string text;
    for (const char c : printed) {
        text += c == '\n' ? ' ' : c;
    }
    const std::size_t last = text.find_last_not_of(' ');
    text.erase(last == std::string::npos ? 0 : last + 1);
    return text;
}

std::string WhatWasPrinted(const std::string &printed) {
    const std::string text = AsOneLine(printed);
    return text.empty() ? " without a word" : fmt::format("; it prints \"{}\"", text);
}

/// An action that needs nothing, so that a line is accepted or refused for its other options.
std::string HarmlessAction() {
    for (const ActionFacts &action : ScalerIspFacts::kActions) {
        const auto *option = ScalerIspFacts::FindOption(action.name);
        if (action.files == "NONE" && action.reads == "NOTHING" && option->needs.empty()) {
            return "--" + std::string(action.name);
        }
    }
    return "";
}

bool HasFatalFinding(LineUnderCheck &line) {
    const auto &all = line.Findings();
    return std::any_of(all.begin(), all.end(), [](const Finding &finding) {
        return finding.severity == FindingClass::Fatal;
    });
}

/// ARGS without these options, except one of them.
ArgumentList WithoutAllBut(const LineUnderCheck &line,
                           const std::vector<const GivenArgument *> &options,
                           const GivenArgument *kept) {
    ArgumentList arguments = line.Arguments();
    // From the right, so that positions further left stay as they are.
    std::for_each(options.rbegin(), options.rend(), [&](const GivenArgument *given) {
        if (given != kept) {
            arguments = Without(arguments, *given);
        }
    });
    return arguments;
}

/// Several options can lack something at once, so that none of them is the reason alone.
bool ExplainByNeeds(LineUnderCheck &line) {
    std::vector<const GivenArgument *> lacking;
    std::vector<NeedText> needs;
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const auto &option = *line.Options()[i]->option;
        if (option.effect.group != ScalerIspFacts::Group::Action &&
            !HasNeeds(option, line.LineFor(i))) {
            lacking.push_back(line.Options()[i]);
            needs.push_back(DescribeNeed(line, i, option.needs));
        }
    }
    if (!line.Parse(WithoutAllBut(line, lacking, nullptr)).accepted) {
        return false;
    }
    for (std::size_t i = 0; i < lacking.size(); ++i) {
        const GivenArgument &given = *lacking[i];
        if (line.Parse(WithoutAllBut(line, lacking, &given)).accepted) {
            continue;
        }
        std::erase_if(line.Findings(), [&](const Finding &finding) {
            return finding.name == "no-effect" && finding.argument == given.position;
        });
        line.Report("missing-need", given, Underline::Name,
                    {.example = needs[i].example, .detail = needs[i].detail});
    }
    return HasFatalFinding(line);
}

} // namespace

void CheckSearch(LineUnderCheck &line) {
    const GivenArgument *search = line.Find("searchfw");
    if (search == nullptr || line.HasFatal(*search)) {
        return;
    }
    if (IsBlockingSearch(*search, line.Context())) {
        CheckSettingsOfSearch(line, *search); // the parser would wait for a writer of the pipe
        return;
    }
    if (!line.IsRefused()) {
        return;
    }
    // Only the search, with the settings files before it.
    ArgumentList probe;
    for (const GivenArgument *given : line.Options()) {
        if (given->option->name == "settingfile" && given->position < search->position) {
            probe.insert(probe.end(), {"--settingfile", *given->value});
        }
    }
    probe.insert(probe.end(), {"--searchfw", *search->value, HarmlessAction()});
    const ParsedLine &parsed = line.Parse(probe);
    if (!parsed.accepted) {
        // Without a candidate the settings file does not matter.
        const bool hasCandidates = parsed.printed.find(kNoCandidate) == std::string::npos;
        if (hasCandidates && CheckSettingsOfSearch(line, *search)) {
            return;
        }
        const std::string text = AsOneLine(parsed.printed);
        line.Report("search-failed", *search, Underline::Value,
                    {.other = line.Context().libraryDirectory.string(),
                     .detail = text.empty() ? "no file fits"
                                            : fmt::format("the library prints \"{}\"", text)});
    }
}

void ExplainRefusal(LineUnderCheck &line) {
    if (!line.IsRefused() || HasFatalFinding(line) || ExplainByNeeds(line)) {
        return;
    }
    const std::string detail = WhatWasPrinted(line.Printed());
    for (const GivenArgument *given : line.Options()) {
        if (line.Parse(Without(line.Arguments(), *given)).accepted) {
            const std::string allowed = given->option->takesValue
                                            ? AllowedValue(*given->option)
                                            : std::string(given->option->meaning);
            line.Report("refused", *given, Underline::Name, {.allowed = allowed, .detail = detail});
            return;
        }
    }
    line.Report("refused", FindingWords{.detail = detail});
}

} // namespace ispctl
