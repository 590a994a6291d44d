#include "FailureDetail.h"

#include <algorithm>
#include <dlfcn.h>
#include <fmt/format.h>
#include <string_view>

#include "doctor/PluginCheck.h"
#include "doctor/PluginProbe.h"
#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

constexpr const char *kIspPlugin = "PlugIn/libIsp.dylib";
constexpr const char *kSignPlugin = "libSignVerify.dylib";

/// The required functions that a loaded plug-in lacks.
std::string MissingFunctions(void *plugin, doctor::PluginRole role) {
    std::string missing;
    for (const doctor::PluginFunction &function : doctor::FunctionsOf(role)) {
        const bool isRequired = function.use == doctor::PluginFunction::Use::Required;
        if (isRequired && ::dlsym(plugin, function.name) == nullptr) {
            missing += (missing.empty() ? "" : ", ") + std::string(function.name);
        }
    }
    return missing;
}

/// Lets the loader try the file once more, as the library has done in this process.
void ReportWhatLoaderFinds(const std::string &file, doctor::PluginRole role,
                           doctor::Report &report) {
    void *plugin = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) {
        const char *reason = ::dlerror();
        std::string text = reason != nullptr ? reason : "no reason is given";
        std::replace(text.begin(), text.end(), '\n', ' ');
        ReportLoader(file, text, FindingsOf(role), report);
        return;
    }
    const std::string missing = MissingFunctions(plugin, role);
    if (IsOfOtherRole(role, [&](const char *name) { return ::dlsym(plugin, name) != nullptr; })) {
        ReportOtherRole(file, role, report);
    } else if (!missing.empty()) {
        report.Add(doctor::FindingId::FunctionMissing, file, missing);
    }
}

/// What is wrong with a plug-in that the library could not use, and what to do, in lines; empty if
/// nothing is.
std::string DefectOf(const std::string &file, doctor::PluginRole role) {
    doctor::Report report;
    std::string ignored;
    if (CheckLoadable(file, FindingsOf(role), report, ignored)) {
        ReportWhatLoaderFinds(file, role, report);
    }
    if (report.Findings().empty()) {
        return "";
    }
    const doctor::Finding &finding = report.Findings().front();
    return MessageOf(finding) + "\n" + RemedyOf(finding);
}

/// The function that runs an action, such as IspFlash; the column CALL names it in parentheses.
std::string FunctionOf(const ScalerIspFacts::ActionFacts &action) {
    const auto open = action.call.find('(');
    return open == std::string_view::npos
               ? ""
               : std::string(action.call.substr(open + 1, action.call.size() - open - 2));
}

const ScalerIspFacts::ActionFacts *ActionOf(const Records &records) {
    for (const auto &action : ScalerIspFacts::kActions) {
        if (action.action == records.command.enumActionType) {
            return &action;
        }
    }
    return nullptr;
}

/// Why the wrapper of the action's function returned 6; empty if the plug-in has the function.
std::string MissingFunction(const std::filesystem::path &plugin,
                            const ScalerIspFacts::ActionFacts &action) {
    if (!action.call.starts_with("CALL(")) {
        return fmt::format("--{} never calls a plug-in function", action.name);
    }
    const std::string name = FunctionOf(action);
    void *handle = ::dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
    const bool isMissing = handle != nullptr && ::dlsym(handle, name.c_str()) == nullptr;
    return isMissing
               ? fmt::format("{} lacks {}, which --{} calls", plugin.string(), name, action.name)
               : "";
}

bool IsVerified(const Records &records) {
    const auto &command = records.command;
    return command.enumActionType == ENUM_ACTION_VERIFY ||
           (command.enumDigitalSignatureType == ENUM_SIGN_TYPE_SW &&
            command.enumIspMode == SCALER_ISP_MODE_NORMAL);
}

/// Whether the sign/verify plug-in alone does the work, so that no function of another is called.
bool NeedsNoIspPlugin(const Records &records) {
    return records.command.enumActionType == ENUM_ACTION_SIGN ||
           records.command.enumActionType == ENUM_ACTION_VERIFY;
}

bool HasBootPass(const Records &records) {
    const auto &command = records.command;
    return command.enumBootCodeType == SCALER_ISP_NEW_BOOT_CODE &&
           command.enumIspMode == SCALER_ISP_MODE_FACTORY && command.szBootFwPath[0] != '\0';
}

/// Whether a line with these records can end with one of the codes of single steps.
bool CanEndWith(int code, const Records &records) {
    switch (code) {
    case SCALER_ISP_BAD_SIGNATURE:
        return IsVerified(records);
    case SCALER_ISP_SIGNING_FAILED:
        return records.command.enumActionType == ENUM_ACTION_SIGN;
    case SCALER_ISP_BOOT_MAP_TOO_LARGE:
        return HasBootPass(records);
    case SCALER_ISP_NO_WORKING_COPY:
        return HasBootPass(records) || IsVerified(records);
    case SCALER_ISP_NO_HUB_DEVICE:
        return false; // ispctl gives the library no callback for hub devices
    default:
        return true;
    }
}

} // namespace

ResultOrigin OriginOf(int code, const std::filesystem::path &libraryDirectory,
                      const Records *records, bool pluginLoaded) {
    ResultOrigin origin;
    const bool hasSignPluginOnly = records != nullptr && NeedsNoIspPlugin(*records);
    origin.deviceUntouched = hasSignPluginOnly;
    switch (code) {
    case SCALER_ISP_PLUGIN_NOT_LOADED:
        origin.detail = DefectOf((libraryDirectory / kIspPlugin).string(), doctor::PluginRole::Isp);
        // The ISP plug-in is loaded before anything else is done.
        origin.nothingCalled = !origin.detail.empty();
        break;
    case SCALER_ISP_SIGN_PLUGIN_MISSING:
        origin.detail =
            DefectOf((libraryDirectory / kSignPlugin).string(), doctor::PluginRole::Sign);
        origin.nothingCalled = !origin.detail.empty() && hasSignPluginOnly;
        break;
    case SCALER_ISP_FUNCTION_MISSING:
        if (const auto *action = records != nullptr ? ActionOf(*records) : nullptr) {
            origin.detail = MissingFunction(libraryDirectory / kIspPlugin, *action);
            // The functions before it, SetIDev and SetUIFunction, only store what they get.
            origin.deviceUntouched = !origin.detail.empty();
        }
        break;
    case SCALER_ISP_SUCCESS:
        origin.fromLibrary = true;
        return origin;
    case SCALER_ISP_REFUSED:
        origin.fromLibrary = !pluginLoaded;
        return origin;
#define ISPCTL_OTHER_CODE(NAME, VALUE, ...) +((VALUE) == code ? 1 : 0)
    default:
        origin.fromLibrary = (0 SCALER_ISP_RESULT_CODES(ISPCTL_OTHER_CODE)) != 0 &&
                             (records == nullptr || CanEndWith(code, *records));
        return origin;
#undef ISPCTL_OTHER_CODE
    }
    origin.fromLibrary = !origin.detail.empty() || !pluginLoaded || records == nullptr;
    return origin;
}

} // namespace ispctl
