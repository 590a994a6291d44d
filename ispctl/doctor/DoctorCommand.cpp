#include "doctor/DoctorCommand.h"

#include "doctor/DeviceCheck.h"
#include "doctor/Finding.h"
#include "doctor/LibraryCheck.h"
#include "doctor/LocaleCheck.h"
#include "doctor/NameCase.h"
#include "doctor/PluginCheck.h"
#include "doctor/ReportView.h"
#include "doctor/SearchCheck.h"
#include "doctor/SettingFile.h"

namespace ispctl::doctor {
namespace {

constexpr std::string_view kIspPlugin = "isp-plugin";

ExitStatus StatusOf(const Report &report) {
    if (report.HasError(kIspPlugin)) {
        return kExitNoPlugin;
    }
    return report.Count(FindingClass::Error) > 0     ? kExitFailed
           : report.Count(FindingClass::Warning) > 0 ? kExitFindings
                                                     : kExitSuccess;
}

// RETURNS whether a firmware search can be tried.
bool CheckSettings(const Places &places, Report &report, WriteAccess &access) {
    std::optional<SettingText> text;
    report.BeginSection("settings-file");
    const auto settings =
        CheckSettingFile(places.settingFile, FindingId::SettingMissing, report, text);
    access.Check(places.settingFile);
    if (text) {
        CheckNameCase(places.settingFile, *text, KeysOfSettingFile(), report);
    }
    text.reset();
    report.BeginSection("user-defined-file");
    const auto userDefined =
        CheckSettingFile(places.userDefinedFile, FindingId::UserDefinedMissing, report, text);
    access.Check(places.userDefinedFile);
    if (text) {
        CheckUserDefinedKeys(places.userDefinedFile, *text, report);
    }
    return settings == SettingAccess::Harmless && userDefined == SettingAccess::Harmless;
}

// RETURNS false if the user stopped it.
bool Examine(const Places &places, Report &report) {
    WriteAccess access(report);
    report.BeginSection("library");
    if (!CheckLibrary(places, report, access)) {
        return false;
    }
    const bool libraryWorks = !report.HasError("library");
    report.BeginSection(kIspPlugin);
    if (!CheckPlugin(places, PluginRole::Isp, libraryWorks, report, access)) {
        return false;
    }
    report.BeginSection("sign-plugin");
    if (!CheckPlugin(places, PluginRole::Sign, libraryWorks, report, access)) {
        return false;
    }
    if (IsVirtualScaler(places)) {
        report.BeginSection("virtual-scaler");
        CheckVirtualDevice(places, report);
    }
    const bool searchable = CheckSettings(places, report, access);
    report.BeginSection("locale");
    CheckLocale(places, report);
    report.BeginSection("firmware-search");
    if (libraryWorks && searchable) {
        return CheckSearches(places, report);
    }
    report.Add(FindingId::SearchSkipped, "",
               libraryWorks ? "reading a settings file might never end"
                            : "the library or its directory is not usable");
    return true;
}

} // namespace

ExitStatus DoctorCommand(const Options &options, Session &session) {
    const Places places = PlacesOf(options);
    Report report;
    if (!Examine(places, report)) {
        return kExitInterrupted;
    }
    const ExitStatus status = StatusOf(report);
    if (options.json) {
        ShowJson(places, report, status, session.streams);
    } else {
        ShowText(report, session.streams);
    }
    return status;
}

} // namespace ispctl::doctor
