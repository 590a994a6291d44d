#include "doctor/PluginCheck.h"

#include <algorithm>

#include "doctor/Probe.h"

namespace ispctl::doctor {
namespace {

void ReportFunctions(const std::string &file, PluginRole role, const ProbeOutcome &outcome,
                     Report &report) {
    for (const PluginFunction &function : FunctionsOf(role)) {
        const Notice wanted{"function", function.name};
        const bool present = std::find(outcome.notices.begin(), outcome.notices.end(), wanted) !=
                             outcome.notices.end();
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

} // namespace

const char *NameOf(PluginRole role) {
    return role == PluginRole::Isp ? "isp" : "sign";
}

const LoadFindings &FindingsOf(PluginRole role) {
    static constexpr auto kOf = [](FindingId missing) {
        return LoadFindings{missing,
                            FindingId::PluginUnreadable,
                            FindingId::PluginNotFile,
                            FindingId::PluginWrongType,
                            FindingId::PluginWrongSystem,
                            FindingId::PluginWrongArchitecture,
                            FindingId::PluginSymbol,
                            FindingId::PluginDependency,
                            FindingId::PluginNotLoaded};
    };
    static constexpr LoadFindings kIsp = kOf(FindingId::PluginMissing);
    static constexpr LoadFindings kSign = kOf(FindingId::SignPluginMissing);
    return role == PluginRole::Isp ? kIsp : kSign;
}

bool CheckPlugin(const Places &places, PluginRole role, bool libraryWorks, Report &report,
                 WriteAccess &access) {
    const auto &path = role == PluginRole::Isp ? places.ispPlugin : places.signPlugin;
    const std::string file = path.string();
    std::string description;
    if (!CheckLoadable(file, FindingsOf(role), report, description)) {
        return true;
    }
    report.Add(FindingId::PluginType, file, description);
    access.Check(path);
    const std::string library = libraryWorks ? places.library.string() : "";
    const ProbeOutcome outcome = RunProbe({kProbeCommand, NameOf(role), library, file});
    if (outcome.interrupted) {
        return false;
    }
    if (const Notice *refused = outcome.Find("not-loaded"); refused != nullptr) {
        ReportLoader(file, refused->back(), FindingsOf(role), report);
        return true;
    }
    if (outcome.Find("loaded") != nullptr) {
        report.Add(FindingId::PluginLoads, file);
        ReportFunctions(file, role, outcome, report);
    }
    if (!outcome.end.empty()) {
        report.Add(FindingId::PluginEnds, file, outcome.end);
    }
    return true;
}

} // namespace ispctl::doctor
