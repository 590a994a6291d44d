#include "check/CheckPluginCommand.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <sys/wait.h>
#include <system_error>

#include "LibraryPaths.h"
#include "ResultInfo.h"
#include "check/CallTable.h"
#include "check/LeftBehind.h"
#include "check/ScratchDirectory.h"
#include "check/Verdict.h"
#include "doctor/PluginCheck.h"
#include "doctor/ReportView.h"

namespace ispctl::check {
namespace {

using doctor::FindingId;
using doctor::Notice;
using doctor::PluginFunction;
using doctor::PluginRole;
using doctor::ProbeOutcome;
using doctor::Report;

constexpr std::chrono::seconds kCallLimit{20};
constexpr std::size_t kShownBytes = 60;

/// A plug-in under check.
struct Plugin {
    std::string file;    ///< absolute
    std::string library; ///< empty: none is installed
    std::optional<PluginRole> role;
};

const char *FileNameOf(PluginRole role) {
    return role == PluginRole::Isp ? "libIsp.dylib" : "libSignVerify.dylib";
}

// The role that the plug-in fills best; nothing if it exports no function of either.
std::optional<PluginRole> RoleOf(const ProbeOutcome &outcome) {
    const auto missing = [&](PluginRole role) {
        const auto functions = doctor::FunctionsOf(role);
        return std::count_if(functions.begin(), functions.end(), [&](const PluginFunction &f) {
            return f.use == PluginFunction::Use::Required && !doctor::HasExport(outcome, f.name);
        });
    };
    const auto any = [&](PluginRole role) {
        const auto functions = doctor::FunctionsOf(role);
        return std::any_of(functions.begin(), functions.end(), [&](const PluginFunction &f) {
            return doctor::HasExport(outcome, f.name);
        });
    };
    const bool isp = any(PluginRole::Isp);
    const bool sign = any(PluginRole::Sign);
    if (isp && sign) {
        return missing(PluginRole::Isp) <= missing(PluginRole::Sign) ? PluginRole::Isp
                                                                     : PluginRole::Sign;
    }
    return isp    ? std::optional(PluginRole::Isp)
           : sign ? std::optional(PluginRole::Sign)
                  : std::nullopt;
}

doctor::LoadFindings Findings() {
    return doctor::FindingsOfPlugin(FindingId::FileMissing);
}

// RETURNS false if the user stopped it.
bool CheckFunctions(Plugin &plugin, Report &report) {
    const ProbeOutcome outcome =
        doctor::RunProbe({doctor::kProbeCommand, doctor::kProbePlugin, plugin.library, plugin.file},
                         {kCallLimit, ""});
    report.BeginSection("functions");
    if (doctor::ReportLoading(plugin.file, Findings(), outcome, report)) {
        plugin.role = RoleOf(outcome);
        if (plugin.role) {
            report.Add(FindingId::PluginKind, plugin.file, doctor::KindOf(*plugin.role));
            doctor::ReportFunctions(plugin.file, *plugin.role, outcome, report);
            const char *name = FileNameOf(*plugin.role);
            if (std::filesystem::path(plugin.file).filename() != name) {
                report.Add(FindingId::PluginName, plugin.file, name);
            }
        } else if (outcome.end.empty()) {
            report.Add(FindingId::NotPlugin, plugin.file);
        }
    }
    if (!outcome.end.empty()) {
        report.Add(FindingId::PluginEnds, plugin.file, outcome.end);
    }
    return !outcome.interrupted;
}

// Progress bars of a plug-in use carriage returns.
void ReportPrinted(const std::string &file, const CallRow &row, const std::string &printed,
                   Report &report) {
    const auto control = std::find_if(printed.begin(), printed.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && c != '\n' && c != '\t' && c != '\r') || byte == 0x7F;
    });
    if (control != printed.end()) {
        const auto offset = static_cast<std::size_t>(control - printed.begin());
        report.Add(FindingId::EscapeSequence, file, row.function,
                   Visible(printed.substr(offset, kShownBytes), Layout::OneLine, Charset::Ascii));
    }
}

void ReportEnd(const std::string &file, const ProbeOutcome &outcome, Report &report) {
    std::string call;
    int status = outcome.status; // the macros of macOS do not accept a const object
    for (const Notice &notice : outcome.notices) {
        if (notice.front() == kCallBegins && notice.size() == 2) {
            call = notice.back();
        }
    }
    if (outcome.timedOut) {
        report.Add(FindingId::CallBlocks, file, call, std::to_string(kCallLimit.count()));
    } else if (WIFSIGNALED(status)) {
        report.Add(FindingId::CallCrashes, file, call, NameOfSignal(WTERMSIG(status)));
    } else {
        report.Add(FindingId::CallExits, file, call, std::to_string(WEXITSTATUS(status)));
    }
}

/// How the process of a call went.
enum class CallEnd { Reached, Ended, Interrupted };

CallEnd CheckCall(const Plugin &plugin, std::size_t index, const std::string &directory,
                  Report &report) {
    constexpr std::size_t kFindingStrings = 4;
    const CallRow &row = CallRows()[index];
    const ProbeOutcome outcome = doctor::RunProbe(
        {kCallCommand, plugin.library, plugin.file, std::to_string(index), directory},
        {kCallLimit, kCallBegins});
    if (outcome.interrupted) {
        return CallEnd::Interrupted;
    }
    for (const Notice &notice : outcome.notices) {
        const auto id = notice.front() == kCallFinding && notice.size() == kFindingStrings
                            ? doctor::FindFinding(notice[1])
                            : std::nullopt;
        if (id) {
            report.Add(*id, plugin.file, notice[2], notice[3]);
        }
    }
    ReportPrinted(plugin.file, row, outcome.printed, report);
    if (outcome.end.empty()) {
        return CallEnd::Reached;
    }
    ReportEnd(plugin.file, outcome, report);
    return CallEnd::Ended;
}

bool IsPresent(const Report &report, const std::string &function) {
    const auto &all = report.Findings();
    return std::any_of(all.begin(), all.end(), [&](const doctor::Finding &finding) {
        return finding.id == FindingId::FunctionPresent && finding.first == function;
    });
}

// RETURNS false if the user stopped it.
bool CheckCalls(const Plugin &plugin, Report &report) {
    const ScratchDirectory scratch;
    CountHeapExactly();
    report.BeginSection("calls");
    const auto rows = CallRows();
    std::string ended; // the last function that ended its process: other calls would, too
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string function = rows[i].function;
        if (rows[i].role != plugin.role || function == ended || !IsPresent(report, function)) {
            continue;
        }
        switch (CheckCall(plugin, i, scratch.Path().string(), report)) {
        case CallEnd::Interrupted:
            return false;
        case CallEnd::Ended:
            ended = function;
            break;
        case CallEnd::Reached:
            break;
        }
    }
    return true;
}

// RETURNS false if the user stopped it.
bool Examine(Plugin &plugin, bool call, Report &report) {
    report.BeginSection("file");
    if (!doctor::CheckFile(plugin.file, Findings(), report)) {
        return true;
    }
    if (!CheckFunctions(plugin, report)) {
        return false;
    }
    if (!plugin.role || report.HasError("functions")) {
        return true;
    }
    if (!call) {
        report.BeginSection("calls");
        report.Add(FindingId::CallsNotMade, plugin.file);
        return true;
    }
    return CheckCalls(plugin, report);
}

} // namespace

ExitStatus CheckPluginCommand(const CheckOptions &options, Session &session) {
    std::error_code ignored;
    Plugin plugin;
    plugin.file = std::filesystem::absolute(options.file, ignored).string();
    const auto library = InstalledLibraryPath();
    if (std::filesystem::exists(library, ignored)) {
        plugin.library = library.string();
    }
    Report report;
    try {
        if (!Examine(plugin, options.call, report)) {
            return kExitInterrupted;
        }
    } catch (const std::exception &error) {
        return session.Fail(kExitFileError, fmt::format("{}; TMPDIR names a directory for "
                                                        "temporary files that you can write",
                                                        error.what()));
    }
    const Verdict verdict{plugin.file, plugin.role ? doctor::NameOf(*plugin.role) : "",
                          options.call, report};
    return options.json ? ShowVerdictJson(verdict, session.streams) : ShowVerdict(verdict, session);
}

} // namespace ispctl::check
