#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>

#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;

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

/// Options that need something for which the library refuses the line, together with others.
bool PromoteUnmetNeeds(LineUnderCheck &line) {
    bool found = false;
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const GivenArgument &given = *line.Options()[i];
        const auto &option = *given.option;
        if (option.effect.group == ScalerIspFacts::Group::Action || line.IsUsable(i)) {
            continue;
        }
        ArgumentList alone = Without(line.Arguments(), given);
        const ParsedLine parsed = line.Parse(alone);
        if (!parsed.accepted && parsed.printed == line.Printed() &&
            option.section != "version location") {
            continue;
        }
        std::erase_if(line.Findings(), [&](const Finding &finding) {
            return finding.name == "no-effect" && finding.argument == given.position;
        });
        line.Report("missing-need", given, Underline::Name,
                    {.allowed = Describe(option, option.needs)});
        found = true;
    }
    return found;
}

} // namespace

void CheckSearch(LineUnderCheck &line) {
    const GivenArgument *search = line.Find("searchfw");
    if (!line.IsRefused() || search == nullptr || line.HasFatal(*search)) {
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
    const ParsedLine parsed = line.Parse(probe);
    if (!parsed.accepted) {
        const std::string text = AsOneLine(parsed.printed);
        line.Report("search-failed", *search, Underline::Value,
                    {.other = line.Context().libraryDirectory.string(),
                     .detail = text.empty() ? "no file fits"
                                            : fmt::format("the library prints \"{}\"", text)});
    }
}

void ExplainRefusal(LineUnderCheck &line) {
    if (!line.IsRefused() || HasFatalFinding(line)) {
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
    if (!PromoteUnmetNeeds(line)) {
        line.Report("refused", FindingWords{.detail = detail});
    }
}

} // namespace ispctl
