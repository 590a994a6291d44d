// An ISP plug-in: the functions that the library calls. IspPlugin.h declares them; the optional
// ones that this chip does not have (IspEeprom, EnterISPModeExport ...) are simply not there, and
// their actions end with 6. Every function returns 0 for success; any other value reaches the user
// as the result code. No exception may leave a function: hosts may be written in C.

#include <fstream>
#include <string>
#include <vector>

#include <scaler_isp/abi/IspPlugin.h>
#include <scaler_isp/abi/PluginKit.h>

#include "chip.h"
#include "codes.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Bytes = std::vector<unsigned char>;

ScalerIspUi ui;

std::string PathOf(const wchar_t (&field)[SCALER_ISP_PATH_CHARS]) {
    char path[SCALER_ISP_PATH_BYTES];
    return ScalerIspWidePath(field, path);
}

void Send(const std::string &text) {
    ScalerIspSendMessage(&ui, text.c_str());
}

/// Runs the body of an exported function. RETURNS its result code.
template <class Body> int Guarded(Body &&body) {
    try {
        body();
        return SCALER_ISP_DONE;
    } catch (const Failure &failure) {
        return failure.code;
    } catch (const std::exception &) {
        return kInternal;
    }
}

/// A bank of a firmware file; the end of the last bank is filled with 0xFF.
Bytes FirmwareBank(const STRUCT_C_STYLE_FW_BANK_SETTING &source) {
    const std::string path = PathOf(source.wszFwPath);
    Bytes bytes(kBankBytes, 0xFF);
    std::ifstream file(path, std::ios::binary);
    file.seekg(std::streamoff(source.ulFileBank) * kBankBytes);
    file.read(reinterpret_cast<char *>(bytes.data()), kBankBytes);
    if (file.gcount() == 0) {
        Send("A firmware file cannot be read: " + path);
        throw Failure{kNoFirmware};
    }
    return bytes;
}

/// All banks before anything is erased: a file may be missing or too large.
std::vector<Bytes> ReadMap(const STRUCT_C_STYLE_MAP_FW &map) {
    std::vector<Bytes> banks;
    if (map.ulFwCount > SCALER_ISP_MAX_BANKS) {
        throw Failure{kTooLarge};
    }
    for (std::uint32_t i = 0; i < map.ulFwCount; ++i) {
        if (map.ulTargetBank[i] >= kBanks) {
            throw Failure{kTooLarge};
        }
        banks.push_back(FirmwareBank(map.stFwBank[i]));
    }
    return banks;
}

void Program(const STRUCT_C_STYLE_MAP_FW &map) {
    const std::vector<Bytes> banks = ReadMap(map);
    Chip chip;
    ScalerIspBeginProgress(&ui);
    for (std::uint32_t i = 0; i < banks.size(); ++i) {
        const std::uint32_t bank = map.ulTargetBank[i];
        chip.WriteBank(bank, banks[i]);
        if (chip.Read(bank * kBankBytes, kBankBytes) != banks[i]) {
            throw Failure{kNotVerified};
        }
        ScalerIspReportProgress(&ui, i + 1, banks.size());
    }
}

void Dump(const STRUCT_DUMP_FLASH_SETTING &dump) {
    const std::uint32_t end = kBanks * kBankBytes;
    if (dump.ulDumpAddr > end || dump.ulDumpLen > end - dump.ulDumpAddr) {
        throw Failure{kTooLarge};
    }
    Chip chip;
    ScalerIspBeginProgress(&ui);
    const Bytes bytes = chip.Read(dump.ulDumpAddr, dump.ulDumpLen);
    std::ofstream file(PathOf(dump.wszDumpFile), std::ios::binary);
    file.write(reinterpret_cast<const char *>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw Failure{kNoDump};
    }
    ScalerIspReportProgress(&ui, 1, 1);
}

void SendVersion() {
    std::string text = "Version: ";
    for (const unsigned char byte : Chip().Read(0xFFE0, 16)) {
        if (byte < 0x20 || byte >= 0x7F) {
            break;
        }
        text += static_cast<char>(byte);
    }
    Send(text);
}

} // namespace

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback /* only for devices behind a hub */) {
    ScalerIspSetUi(&ui, progress, message);
}

void SetCommInterface(CNxComm * /* only host tools pass one */) {}

int IspFlash(Setting *setting) {
    return Guarded([&] { Program(setting->stMapFw); });
}

int DumpFlash(Setting *setting) {
    return Guarded([&] { Dump(setting->stDumpFlash); });
}

// enumVersionLocationType of the record says where the user wants the version read from.
int RecordFWVersion(Setting *) {
    return Guarded(SendVersion);
}

// This chip stores no key. Success with an untouched buffer would let the library verify a
// signature with a key of zeros, so a chip without a key has to fail.
int GetKeyFromFlash(Setting *, unsigned char *) {
    return Guarded([] {
        Send("There is no verify key in the flash of this chip");
        throw Failure{kNoKey};
    });
}

int GetScalerType(Setting *) {
    return Guarded([] { Send("Scaler type: template"); });
}
