#include "RunOutcome.h"

#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl {
namespace {

bool IsLoadFailure(int code) {
    return code == SCALER_ISP_PLUGIN_NOT_LOADED || code == SCALER_ISP_SIGN_PLUGIN_MISSING ||
           code == SCALER_ISP_FUNCTION_MISSING;
}

} // namespace

ExitStatus StatusOfOutcome(const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Interrupted:
        return kExitInterrupted;
    case RunEnd::Exit:
    case RunEnd::Signal:
        return kExitPluginEnded;
    default:
        break;
    }
    if (outcome.IsSuccess()) {
        return kExitSuccess;
    }
    if (!outcome.problem.empty()) {
        return kExitFileError;
    }
    if (!outcome.code || !outcome.fromLibrary) {
        return kExitFailed;
    }
    if (*outcome.code == SCALER_ISP_REFUSED) {
        return outcome.pluginCalled ? kExitFailed : kExitRefused;
    }
    if (*outcome.code == SCALER_ISP_BAD_SIGNATURE) {
        return kExitBadSignature;
    }
    return IsLoadFailure(*outcome.code) ? kExitNoPlugin : kExitFailed;
}

std::string_view SourceOf(const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Returned:
        if (!outcome.problem.empty()) {
            return "ispctl";
        }
        return outcome.fromLibrary ? "library" : "plug-in";
    case RunEnd::Exit:
    case RunEnd::Signal:
        return "plug-in";
    default:
        return "ispctl";
    }
}

std::string_view StageOf(const RunOutcome &outcome) {
    if (outcome.inBackup) {
        return "backup";
    }
    if (outcome.end != RunEnd::Returned || !outcome.code || !outcome.fromLibrary) {
        return "call";
    }
    if (*outcome.code == SCALER_ISP_SUCCESS) {
        return "done";
    }
    if (IsLoadFailure(*outcome.code)) {
        return "load";
    }
    if (*outcome.code == SCALER_ISP_BAD_SIGNATURE) {
        return "verify";
    }
    return outcome.pluginCalled ? "call" : "validate";
}

} // namespace ispctl
