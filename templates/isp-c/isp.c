/* An ISP plug-in: the functions that the library calls. IspPlugin.h declares them; the optional
 * ones that this chip does not have (IspEeprom, EnterISPModeExport ...) are simply not there, and
 * their actions end with 6. Every function returns 0 for success; any other value reaches the user
 * as the result code. */

#include <stdio.h>
#include <string.h>

#include <scaler_isp/abi/IspPlugin.h>
#include <scaler_isp/abi/PluginKit.h>

#include "chip.h"

typedef STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING Setting;

/* Result codes of this plug-in, explained to users in libIsp.codes. */
enum {
    MY_NO_CHIP = 0x7001,
    MY_NO_FIRMWARE = 0x7002,
    MY_TOO_LARGE = 0x7003,
    MY_NOT_VERIFIED = 0x7004,
    MY_NO_DUMP = 0x7005,
    MY_NO_KEY = 0x7006
};

static ScalerIspUi ui;

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback hubDevice) {
    (void)hubDevice; /* only for devices behind a hub */
    ScalerIspSetUi(&ui, progress, message);
}

void SetCommInterface(CNxComm *comm) {
    (void)comm; /* only host tools pass one */
}

/* Reads a bank of a firmware file; the end of the last bank is filled with 0xFF. */
static int ReadFirmwareBank(const STRUCT_C_STYLE_FW_BANK_SETTING *source, unsigned char *bytes) {
    char path[SCALER_ISP_PATH_BYTES];
    FILE *file = fopen(ScalerIspWidePath(source->wszFwPath, path), "rb");
    size_t count = 0;
    if (file != NULL) {
        if (fseek(file, (long)(source->ulFileBank * CHIP_BANK_BYTES), SEEK_SET) == 0) {
            count = fread(bytes, 1, CHIP_BANK_BYTES, file);
        }
        fclose(file);
    }
    if (count == 0) {
        ScalerIspSendMessage(&ui, "A firmware file cannot be read:");
        ScalerIspSendMessage(&ui, path);
        return MY_NO_FIRMWARE;
    }
    memset(bytes + count, 0xFF, CHIP_BANK_BYTES - count);
    return SCALER_ISP_DONE;
}

static int ProgramBank(uint32_t bank, const STRUCT_C_STYLE_FW_BANK_SETTING *source) {
    static unsigned char written[CHIP_BANK_BYTES];
    static unsigned char found[CHIP_BANK_BYTES];
    const int result = ReadFirmwareBank(source, written);
    if (result != SCALER_ISP_DONE) {
        return result;
    }
    if (!ChipWriteBank(bank, written) ||
        !ChipRead(bank * CHIP_BANK_BYTES, CHIP_BANK_BYTES, found)) {
        return MY_NO_CHIP;
    }
    return memcmp(written, found, CHIP_BANK_BYTES) == 0 ? SCALER_ISP_DONE : MY_NOT_VERIFIED;
}

/* Nothing may be erased before everything is known to be there. */
static int CheckMap(const STRUCT_C_STYLE_MAP_FW *map) {
    static unsigned char ignored[CHIP_BANK_BYTES];
    uint32_t i;
    if (map->ulFwCount > SCALER_ISP_MAX_BANKS) {
        return MY_TOO_LARGE;
    }
    for (i = 0; i < map->ulFwCount; ++i) {
        const int result = ReadFirmwareBank(&map->stFwBank[i], ignored);
        if (result != SCALER_ISP_DONE) {
            return result;
        }
        if (map->ulTargetBank[i] >= CHIP_BANKS) {
            return MY_TOO_LARGE;
        }
    }
    return SCALER_ISP_DONE;
}

int IspFlash(Setting *setting) {
    const STRUCT_C_STYLE_MAP_FW *map = &setting->stMapFw;
    uint32_t i;
    int result = CheckMap(map);
    if (result != SCALER_ISP_DONE) {
        return result;
    }
    if (!ChipOpen()) {
        return MY_NO_CHIP;
    }
    ScalerIspBeginProgress(&ui);
    for (i = 0; i < map->ulFwCount && result == SCALER_ISP_DONE; ++i) {
        result = ProgramBank(map->ulTargetBank[i], &map->stFwBank[i]);
        if (result == SCALER_ISP_DONE) {
            ScalerIspReportProgress(&ui, i + 1, map->ulFwCount);
        }
    }
    ChipClose();
    return result;
}

int DumpFlash(Setting *setting) {
    static unsigned char bytes[CHIP_BANK_BYTES];
    const uint32_t begin = setting->stDumpFlash.ulDumpAddr;
    const uint32_t length = setting->stDumpFlash.ulDumpLen;
    char path[SCALER_ISP_PATH_BYTES];
    uint32_t done = 0;
    int result = SCALER_ISP_DONE;
    FILE *file;
    if (begin > CHIP_BANKS * CHIP_BANK_BYTES || length > CHIP_BANKS * CHIP_BANK_BYTES - begin) {
        return MY_TOO_LARGE;
    }
    file = fopen(ScalerIspWidePath(setting->stDumpFlash.wszDumpFile, path), "wb");
    if (file == NULL) {
        return MY_NO_DUMP;
    }
    if (!ChipOpen()) {
        fclose(file);
        return MY_NO_CHIP;
    }
    ScalerIspBeginProgress(&ui);
    while (done < length && result == SCALER_ISP_DONE) {
        const uint32_t count = length - done < CHIP_BANK_BYTES ? length - done : CHIP_BANK_BYTES;
        if (!ChipRead(begin + done, count, bytes)) {
            result = MY_NO_CHIP;
        } else if (fwrite(bytes, 1, count, file) != count) {
            result = MY_NO_DUMP;
        }
        done += count;
        ScalerIspReportProgress(&ui, done, length);
    }
    ChipClose();
    if (fclose(file) != 0 && result == SCALER_ISP_DONE) {
        result = MY_NO_DUMP;
    }
    return result;
}

int RecordFWVersion(Setting *setting) {
    unsigned char version[16];
    char text[sizeof version + sizeof "Version: "] = "Version: ";
    size_t i;
    (void)setting; /* enumVersionLocationType says where the user wants it read from */
    if (!ChipOpen()) {
        return MY_NO_CHIP;
    }
    const int read = ChipRead(0xFFE0, sizeof version, version);
    ChipClose();
    if (!read) {
        return MY_NO_CHIP;
    }
    for (i = 0; i < sizeof version && version[i] >= 0x20 && version[i] < 0x7F; ++i) {
        text[strlen("Version: ") + i] = (char)version[i];
    }
    ScalerIspSendMessage(&ui, text);
    return SCALER_ISP_DONE;
}

/* This chip stores no key. Success with an untouched buffer would let the library verify a
 * signature with a key of zeros, so a chip without a key has to fail. */
int GetKeyFromFlash(Setting *setting, unsigned char *key) {
    (void)setting;
    (void)key;
    ScalerIspSendMessage(&ui, "There is no verify key in the flash of this chip");
    return MY_NO_KEY;
}

int GetScalerType(Setting *setting) {
    (void)setting;
    ScalerIspSendMessage(&ui, "Scaler type: template");
    return SCALER_ISP_DONE;
}
