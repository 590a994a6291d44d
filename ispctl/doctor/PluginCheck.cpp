#include "doctor/PluginCheck.h"

#include <algorithm>

#include "doctor/FileState.h"
#include "doctor/Probe.h"

namespace ispctl::doctor {

LoadFindings FindingsOfPlugin(FindingId missing) {
    return {missing,
            FindingId::PluginUnreadable,
            FindingId::PluginNotFile,
            FindingId::PluginWrongType,
            FindingId::PluginWrongSystem,
            FindingId::PluginWrongArchitecture,
            FindingId::PluginSymbol,
            FindingId::PluginDependency,
            FindingId::PluginNotLoaded};
}

LoadFindings FindingsOf(PluginRole role) {
    return FindingsOfPlugin(role == PluginRole::Isp ? FindingId::PluginMissing
                                                    : FindingId::SignPluginMissing);
}

bool CheckFile(const std::string &file, const LoadFindings &findings, Report &report) {
    std::string description;
    if (!CheckLoadable(file, findings, report, description)) {
        return false;
    }
    report.Add(FindingId::PluginType, file, description);
    return true;
}

bool ReportLoading(const std::string &file, const LoadFindings &findings,
                   const ProbeOutcome &outcome, Report &report) {
    if (const Notice *refused = outcome.Find("not-loaded"); refused != nullptr) {
        ReportLoader(file, refused->back(), findings, report);
        return false;
    }
    if (outcome.Find("loaded") == nullptr) {
        return false;
    }
    report.Add(FindingId::PluginLoads, file);
    return true;
}

bool HasExport(const ProbeOutcome &outcome, const char *function) {
    const Notice wanted{"function", function};
    return std::find(outcome.notices.begin(), outcome.notices.end(), wanted) !=
           outcome.notices.end();
}

void ReportOtherRole(const std::string &file, PluginRole role, Report &report) {
    const std::filesystem::path path = file;
    const auto expected = role == PluginRole::Isp
                              ? path.parent_path().parent_path() / "libSignVerify.dylib"
                              : path.parent_path() / "PlugIn/libIsp.dylib";
    report.Add(FindingId::PluginOtherRole, file, KindOf(OtherRole(role)), expected.string());
}

void ReportFunctions(const std::string &file, PluginRole role, const ProbeOutcome &outcome,
                     Report &report) {
    for (const PluginFunction &function : FunctionsOf(role)) {
        const bool present = HasExport(outcome, function.name);
        const bool required = function.use == PluginFunction::Use::Required;
        if (function.use == PluginFunction::Use::NeverCalled) {
            if (present) {
                report.Add(FindingId::FunctionUnused, file, function.name);
            }
        } else if (present) {
            report.Add(FindingId::FunctionPresent, file, function.name,
                       required ? "required" : "optional");
        } else {
            report.Add(required ? FindingId::FunctionMissing : FindingId::OptionalMissing, file,
                       function.name);
        }
    }
}

namespace {

/// Reports whether there are words for the codes of a plug-in.
void ReportCodes(const std::filesystem::path &plugin, Report &report) {
    const auto codes = std::filesystem::path(plugin).replace_extension(".codes");
    const bool isThere = StateOf(codes).kind == FileState::Kind::Regular;
    report.Add(isThere ? FindingId::CodesPresent : FindingId::CodesMissing, codes.string());
}

} // namespace

bool CheckPlugin(const Places &places, PluginRole role, bool libraryWorks, Report &report,
                 WriteAccess &access) {
    const auto &path = role == PluginRole::Isp ? places.ispPlugin : places.signPlugin;
    const std::string file = path.string();
    const LoadFindings findings = FindingsOf(role);
    if (!CheckFile(file, findings, report)) {
        return true;
    }
    access.Check(path);
    const std::string library = libraryWorks ? places.library.string() : "";
    const ProbeOutcome outcome = RunProbe({kProbeCommand, kProbePlugin, library, file});
    if (outcome.interrupted) {
        return false;
    }
    if (ReportLoading(file, findings, outcome, report)) {
        if (IsOfOtherRole(role, [&](const char *name) { return HasExport(outcome, name); })) {
            ReportOtherRole(file, role, report);
        } else {
            ReportFunctions(file, role, outcome, report);
            if (role == PluginRole::Isp) {
                ReportCodes(path, report);
            }
        }
    }
    if (!outcome.end.empty()) {
        report.Add(FindingId::PluginEnds, file, outcome.end);
    }
    return true;
}

} // namespace ispctl::doctor
