// The eleven functions that the library looks up.

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "common/ExceptionBarrier.h"
#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"
#include "isp/Programmer.h"
#include "isp/RecordLine.h"
#include "isp/Ui.h"
#include "isp/Version.h"
#include "scaler_isp/abi/IspPlugin.h"

using namespace virtual_scaler;

namespace {

constexpr int kLevelsToLibrary = 2; // <library's directory>/PlugIn/libIsp.dylib

/// Writes the call to the journal before opening the device, so that calls that fail are recorded,
/// too.
template <class Action>
int RunExport(const char *function, const Setting *setting, Action &&action) {
    return CatchAll<int>(VIRTUAL_ISP_INTERNAL, [&]() -> int {
        try {
            if (setting == nullptr) {
                throw Failure{VIRTUAL_ISP_BAD_RECORD, Format("%s: no record", function)};
            }
            const std::string directory = DeviceDirectory(kLevelsToLibrary);
            const bool journalled = AppendToJournal(directory, RecordLine(function, *setting));
            Device device(directory);
            if (!journalled) {
                SendMessage("The journal cannot be written: " + directory + "journal.txt");
            }
            action(device);
            return VIRTUAL_ISP_SUCCESS;
        } catch (const Failure &failure) {
            SendMessage(failure.text);
            return failure.code;
        }
    });
}

void JournalOnly(const std::string &line) {
    AppendToJournal(DeviceDirectory(kLevelsToLibrary), line);
}

const char *YesOrNo(bool yes) {
    return yes ? "yes" : "no";
}

void Dump(const Device &device, const STRUCT_DUMP_FLASH_SETTING &dump) {
    device.flash.RequireInside(dump.ulDumpAddr, dump.ulDumpLen);
    Progress progress((dump.ulDumpLen + kBankBytes - 1) / kBankBytes);
    Bytes bytes;
    while (bytes.size() < dump.ulDumpLen) {
        const auto done = static_cast<std::uint32_t>(bytes.size());
        const Bytes piece =
            device.flash.Read(dump.ulDumpAddr + done, std::min(dump.ulDumpLen - done, kBankBytes));
        bytes.insert(bytes.end(), piece.begin(), piece.end());
        device.faults.Delay();
        progress.Step();
    }
    const std::string path = FromWide(dump.wszDumpFile, SCALER_ISP_PATH_CHARS);
    if (!ReplaceFile(path, bytes.data(), bytes.size())) {
        throw Failure{VIRTUAL_ISP_NO_DUMP, Format("The dump file cannot be written: %s: %s",
                                                  path.c_str(), ErrorText(errno))};
    }
    SendMessage(Format("0x%X bytes from 0x%X written to %s", dump.ulDumpLen, dump.ulDumpAddr,
                       path.c_str()));
    progress.Finish();
}

void CopyKey(const Device &device, unsigned char *key) {
    if (key == nullptr) {
        throw Failure{VIRTUAL_ISP_BAD_RECORD, "GetKeyFromFlash: no buffer"};
    }
    Bytes bytes = device.flash.Read(device.description.keyAddress, device.description.keyLength);
    while (!bytes.empty() && bytes.back() == kErased) {
        bytes.pop_back();
    }
    if (bytes.empty()) {
        throw Failure{VIRTUAL_ISP_NO_KEY, Format("There is no key in the flash at 0x%X",
                                                 device.description.keyAddress)};
    }
    std::copy(bytes.begin(), bytes.end(), key);
    SendMessage(Format("Key read from the flash: %zu bytes", bytes.size()));
}

/// Information by enumUserDefinedInfoType, which starts at 1.
constexpr std::string Description::*kInformation[] = {
    &Description::scalerType, &Description::firmwareName, &Description::model,
    &Description::hardwareId};

void PrintInformation(const Description &description, std::uint32_t type) {
    if (type == 0 || type > std::size(kInformation)) {
        throw Failure{VIRTUAL_ISP_BAD_MODE, Format("Information %u is unknown: there are 1 to %zu",
                                                   type, std::size(kInformation))};
    }
    std::printf("%s\n", (description.*kInformation[type - 1]).c_str());
}

} // namespace

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback hubDevice) {
    CurrentUi() = {progress, message};
    CatchAll<bool>(false, [&] {
        JournalOnly(Format("SetUIFunction progress=%s message=%s hubDevice=%s",
                           YesOrNo(progress != nullptr), YesOrNo(message != nullptr),
                           YesOrNo(hubDevice != nullptr)));
        return true;
    });
}

void SetCommInterface(CNxComm *comm) {
    CatchAll<bool>(false, [&] {
        JournalOnly(Format("SetCommInterface comm=%s", YesOrNo(comm != nullptr)));
        return true;
    });
}

int IspFlash(Setting *setting) {
    return RunExport("IspFlash", setting, [&](Device &device) { ProgramFlash(device, *setting); });
}

int GetKeyFromFlash(Setting *setting, unsigned char *key) {
    return RunExport("GetKeyFromFlash", setting, [&](Device &device) { CopyKey(device, key); });
}

int RecordFWVersion(Setting *setting) {
    return RunExport("RecordFWVersion", setting,
                     [&](Device &device) { ReportVersion(device, *setting); });
}

int DumpFlash(Setting *setting) {
    return RunExport("DumpFlash", setting,
                     [&](Device &device) { Dump(device, setting->stDumpFlash); });
}

int GetUserDefinedInfoFromDDCCI(Setting *setting) {
    return RunExport("GetUserDefinedInfoFromDDCCI", setting, [&](Device &device) {
        PrintInformation(device.description, setting->enumUserDefinedInfoType);
    });
}

int IspEeprom(Setting *setting) {
    return RunExport("IspEeprom", setting,
                     [&](Device &device) { RunEepromAction(device, *setting); });
}

int EnterISPModeExport(Setting *setting) {
    return RunExport("EnterISPModeExport", setting, [&](Device &device) {
        device.SetMode("isp");
        SendMessage("The scaler is in ISP mode");
    });
}

int ResetMCUExport(Setting *setting) {
    return RunExport("ResetMCUExport", setting, [&](Device &device) {
        device.SetMode("normal");
        SendMessage("The MCU is reset; the scaler is in normal mode");
    });
}

int GetScalerType(Setting *setting) {
    return RunExport("GetScalerType", setting, [&](Device &device) {
        SendMessage("Scaler type: " + device.description.scalerType);
    });
}
