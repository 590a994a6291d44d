// Both plug-ins in one file: appends the name of each function that is called to the file
// DUMP_FOLDER/calls.txt and writes the record of the last call to DUMP_FOLDER/command.rec or
// DUMP_FOLDER/sign.rec. Everything is a success.

#include <cstdlib>
#include <fstream>
#include <string>

#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

namespace {

std::string InFolder(const char *name) {
    const char *folder = std::getenv("DUMP_FOLDER"); // NOLINT(concurrency-mt-unsafe)
    return std::string(folder != nullptr ? folder : ".") + "/" + name;
}

void NoteCall(const char *function) {
    std::ofstream(InFolder("calls.txt"), std::ios::app) << function << "\n";
}

template <class Record> void Dump(const Record *record, const char *file) {
    std::ofstream(InFolder(file), std::ios::binary)
        .write(reinterpret_cast<const char *>(record), sizeof *record);
}

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

} // namespace

extern "C" {

#define ACTION_FUNCTION(NAME)                                                                      \
    int NAME(Command *setting) {                                                                   \
        NoteCall(#NAME);                                                                           \
        Dump(setting, "command.rec");                                                              \
        return 0;                                                                                  \
    }

ACTION_FUNCTION(IspFlash)
ACTION_FUNCTION(RecordFWVersion)
ACTION_FUNCTION(DumpFlash)
ACTION_FUNCTION(GetUserDefinedInfoFromDDCCI)
ACTION_FUNCTION(IspEeprom)
ACTION_FUNCTION(EnterISPModeExport)
ACTION_FUNCTION(ResetMCUExport)
ACTION_FUNCTION(GetScalerType)

void SetUIFunction(ScalerIspProgressCallback, ScalerIspMessageCallback,
                   ScalerIspHubDeviceCallback) {
    NoteCall("SetUIFunction");
}

void SetCommInterface(CNxComm *) {
    NoteCall("SetCommInterface");
}

int GetKeyFromFlash(Command *, unsigned char *) {
    NoteCall("GetKeyFromFlash");
    return 0;
}

int SignFwExport(const Sign *args) {
    NoteCall("SignFwExport");
    Dump(args, "sign.rec");
    return 1;
}

int VerifySignatureExport(const Sign *args, char *) {
    NoteCall("VerifySignatureExport");
    Dump(args, "sign.rec");
    return 1;
}
}
