#include "line/Checks.h"

#include <fmt/format.h>

#include "line/NeedText.h"

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

bool Programs(const LineUnderCheck &line) {
    return line.Holds("PROGRAM");
}

/// Signature options on a line without a signature type.
void CheckType(LineUnderCheck &line) {
    const GivenArgument *first = nullptr;
    for (const GivenArgument *given : line.Options()) {
        if (given->option->section != "signatures") {
            continue;
        }
        first = first == nullptr ? given : first;
        line.Report("unverified-signature", *given, Underline::Name,
                    {.detail = Programs(line) ? "no signature is verified, and the firmware is "
                                                "programmed unchecked"
                                              : "nothing is signed or verified"})
            .corrected = WithBefore(line.Arguments(), *first, {"--sw"});
    }
}

/// Keys that the key scheme of the line does not use.
void CheckKey(LineUnderCheck &line, std::size_t index) {
    const OptionFacts &option = *line.Options()[index]->option;
    const bool isKey =
        option.section == "signatures" && option.goesWith.find("dsmode=") != std::string_view::npos;
    if (!isKey || !line.IsUsable(index) || HasCompany(option, line.LineFor(index))) {
        return;
    }
    const NeedText need = DescribeNeed(line, index, option.goesWith);
    const bool lacksScheme = line.Holds("sw, !dsmode");
    line.Report("key-not-used", *line.Options()[index], Underline::Name,
                {.example = need.example,
                 .detail = lacksScheme          ? "without --dsmode no key is checked"
                           : need.words.empty() ? "it has no use " + need.detail
                                                : "it is meant for " + need.words});
}

/// Such as "; nothing uses --signfile, --dsmode": the library stores them for a check that this
/// line does not make.
std::string UnusedForCheck(const LineUnderCheck &line) {
    std::string names;
    for (const GivenArgument *given : line.Options()) {
        const OptionFacts &option = *given->option;
        if (option.section == "signatures" && option.name != "sw" && option.name != "hw") {
            names += fmt::format("{}--{}", names.empty() ? "" : ", ", option.name);
        }
    }
    return names.empty() ? "" : "; nothing uses " + names;
}

/// What is programmed although nobody verifies it.
void CheckUnsigned(LineUnderCheck &line, std::size_t index) {
    const GivenArgument &given = *line.Options()[index];
    const OptionFacts &option = *given.option;
    const bool isFirst = line.Find(option.name) == &given;
    if (!isFirst || !Programs(line)) {
        return;
    }
    const bool isFactory = option.meaning.starts_with("factory mode");
    const bool isHardware = option.name == "hw";
    if (isFactory || isHardware) {
        line.Report("unsigned-programming", given, Underline::Name,
                    {.detail = (isFactory ? "factory mode skips the check"
                                          : "a hardware signature is not verified beforehand") +
                               UnusedForCheck(line)});
    }
    const bool isFurtherFile =
        option.effect.kind == ScalerIspFacts::Kind::Firmware && option.effect.entry > 0;
    if (line.Holds("sw|hw") && (isFurtherFile || option.name == "boot")) {
        line.Report("unsigned-file", given, Underline::Name, {});
    }
}

} // namespace

void CheckSignatures(LineUnderCheck &line) {
    if (!line.Holds("sw|hw")) {
        CheckType(line);
    }
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        CheckKey(line, i);
        CheckUnsigned(line, i);
    }
}

} // namespace ispctl
