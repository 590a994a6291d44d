#include "line/Checks.h"

#include "doctor/WriteAccess.h"
#include "line/NamedFile.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// What the library opens in its own directory, and what then runs with the rights of the caller.
constexpr const char *kPlugins[] = {"PlugIn/libIsp.dylib", "libSignVerify.dylib"};

/// The first way by which every user may replace a file; empty if there is none. What a group or
/// the owner of a directory may do is left to `ispctl doctor`.
std::string WayToReplace(const fs::path &file) {
    doctor::Report report;
    doctor::WriteAccess(report).Check(file);
    for (const doctor::Finding &finding : report.Findings()) {
        if (doctor::RowOf(finding.id).severity == doctor::FindingClass::Warning) {
            return doctor::MessageOf(finding);
        }
    }
    return "";
}

/// Nobody relies on what was in a file that is written.
bool IsRead(const LineUnderCheck &line, const GivenArgument &given) {
    const bool isCopied = line.Context().hasPrivateCopies && CanBeCopied(*given.option);
    return given.value && FormOf(*given.option).kind == ValueForm::Kind::File &&
           !IsWritten(line, *given.option) && !isCopied;
}

void CheckPlugins(LineUnderCheck &line) {
    for (const char *name : kPlugins) {
        const fs::path plugin = line.Context().libraryDirectory / name;
        const std::string way = WayToReplace(plugin);
        if (!way.empty()) {
            line.Report("replaceable-plugin", {.other = plugin.string(), .detail = way});
            return; // mostly the directory of both
        }
    }
}

} // namespace

void CheckAccess(LineUnderCheck &line) {
    CheckPlugins(line);
    for (const GivenArgument *given : line.Options()) {
        if (!IsRead(line, *given)) {
            continue;
        }
        const NamedFile file = FileOf(*given, line.Context());
        const std::string way = file.Exists() ? WayToReplace(file.path) : "";
        if (!way.empty()) {
            line.Report("replaceable-file", *given, Underline::Value,
                        {.other = file.path.string(),
                         .allowed = CanBeCopied(*given->option)
                                        ? ", or run on private copies (ispctl run --private-copy)"
                                        : "",
                         .detail = way});
        }
    }
}

} // namespace ispctl
