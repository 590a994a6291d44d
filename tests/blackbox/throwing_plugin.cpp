// Both plug-ins in one, in C++: a function for which the answers hold "throws" throws, with "int" a
// bare number and otherwise a standard exception; every other call succeeds.

#include <cstring>
#include <stdexcept>

#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

#include "journal.h"

namespace {

int Called(const char *function, int result) {
    answer answers[JOURNAL_MAX_ANSWERS];
    journal_end(journal_begin(function));
    const std::size_t count = journal_answers(function, 1, answers);
    for (std::size_t i = 0; i < count; ++i) {
        if (std::strcmp(answers[i].verb, "throws") != 0) {
            continue;
        }
        if (std::strcmp(answers[i].argument, "int") == 0) {
            throw 42;
        }
        throw std::runtime_error("thrown by the plug-in");
    }
    return result;
}

} // namespace

void SetUIFunction(ScalerIspProgressCallback, ScalerIspMessageCallback,
                   ScalerIspHubDeviceCallback) {
    Called("SetUIFunction", 0);
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *, unsigned char *) {
    return Called("GetKeyFromFlash", 0);
}

void SetCommInterface(CNxComm *) {
    Called("SetCommInterface", 0);
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return Called("IspFlash", 0);
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return Called("RecordFWVersion", 0);
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return Called("DumpFlash", 0);
}

int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *) {
    return Called("SignFwExport", 1);
}

int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *, char *) {
    return Called("VerifySignatureExport", 1);
}
