#include "line/Checks.h"

#include <filesystem>
#include <system_error>

#include "line/NamedFile.h"
#include "line/ShellQuote.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kEnding = ".bin";
constexpr std::string_view kDefaultName = "dumpFile.bin";

/// The library takes only a longer name with this ending.
bool KeepsName(const std::string &name) {
    return name.size() > kEnding.size() && name.ends_with(kEnding);
}

std::string FreeName(const fs::path &path) {
    for (int number = 2;; ++number) {
        fs::path other = path;
        other.replace_extension();
        other += "-" + std::to_string(number) + std::string(kEnding);
        std::error_code ignored;
        if (!fs::exists(other, ignored)) {
            return other.string();
        }
    }
}

void CheckExisting(LineUnderCheck &line, const GivenArgument &given, const fs::path &path) {
    std::error_code ignored;
    if (fs::exists(path, ignored)) {
        line.Report(
            "dump-overwritten", given, given.value ? Underline::Value : Underline::Name,
            {.other = path.string(), .example = "--dumpname " + QuoteForShell(FreeName(path))});
    }
}

} // namespace

bool CheckWritable(LineUnderCheck &line, const GivenArgument &given, const fs::path &path) {
    const std::string reason = WhyUnwritable(path);
    std::error_code ignored;
    const bool isNowhere = !fs::exists(path, ignored) && !fs::exists(path.parent_path(), ignored);
    const bool isUnexpanded =
        !reason.empty() && isNowhere && given.value && ReportUnexpanded(line, given);
    if (!reason.empty() && !isUnexpanded) {
        line.Report("unwritable-file", given, given.value ? Underline::Value : Underline::Name,
                    {.other = path.string(), .detail = reason});
    }
    return reason.empty();
}

void CheckDump(LineUnderCheck &line) {
    const GivenArgument *given = line.Find("dumpname");
    if (!line.Holds("dumpflash, dumplen")) {
        return;
    }
    std::string name(kDefaultName);
    if (given != nullptr && KeepsName(*given->value)) {
        name = *given->value;
    } else if (given != nullptr && !given->value->empty()) {
        fs::path better(*given->value);
        better.replace_extension(kEnding);
        const bool isCorrected = KeepsName(better.string());
        Finding &finding =
            line.Report("dump-renamed", *given, Underline::Value,
                        {.example = isCorrected ? "--dumpname " + QuoteForShell(better.string())
                                                : "--dumpname dump.bin"});
        if (isCorrected) {
            finding.corrected = WithValue(line.Arguments(), *given, better.string());
        }
    }
    const fs::path path = line.Context().callerDirectory / name;
    const GivenArgument &subject = given != nullptr ? *given : *line.Find("dumpflash");
    if (CheckWritable(line, subject, path)) {
        CheckExisting(line, subject, path);
    }
}

} // namespace ispctl
