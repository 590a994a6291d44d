#ifndef SCALER_ISP_ABI_PLUGIN_KIT_H
#define SCALER_ISP_ABI_PLUGIN_KIT_H

/// \file
/// What plug-in authors would otherwise write themselves: paths as C strings, progress that only
/// rises, messages, and names for return values. Nothing here is needed; the functions are static
/// inline and need no library. C99 and C++.

#include <stddef.h>
#include <stdint.h>

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/DigitalSignArgs.h"

/// Return values of the sign/verify plug-in, where non-zero is success. The functions of the ISP
/// plug-in are the other way round: 0 is success.
enum ScalerIspSignResult { SCALER_ISP_NOT_SIGNED = 0, SCALER_ISP_SIGNED = 1 };
enum ScalerIspVerifyResult { SCALER_ISP_SIGNATURE_INVALID = 0, SCALER_ISP_SIGNATURE_VALID = 1 };

/// Return value of the functions of the ISP plug-in for success. For failures choose codes that are
/// not in ResultCodes.h.
enum ScalerIspPluginResult { SCALER_ISP_DONE = 0 };

/// Capacity of a buffer for any path field as UTF-8, terminator included. UNITS: bytes.
#define SCALER_ISP_PATH_BYTES (4 * SCALER_ISP_PATH_CHARS + 1)

/// UNITS: characters of a message, terminator included; a longer one is truncated.
#define SCALER_ISP_MESSAGE_CHARS 1024

/// Appends one character as UTF-8; '?' stands for what is not a character.
/// RETURNS the number of bytes. REQUIRES: 4 bytes of capacity.
static inline size_t ScalerIspEncodeUtf8(uint32_t character, char *out) {
    if (character < 0x80) {
        out[0] = (char)character;
        return 1;
    }
    if (character < 0x800) {
        out[0] = (char)(0xC0 | (character >> 6));
        out[1] = (char)(0x80 | (character & 0x3F));
        return 2;
    }
    if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        out[0] = '?';
        return 1;
    }
    if (character < 0x10000) {
        out[0] = (char)(0xE0 | (character >> 12));
        out[1] = (char)(0x80 | ((character >> 6) & 0x3F));
        out[2] = (char)(0x80 | (character & 0x3F));
        return 3;
    }
    out[0] = (char)(0xF0 | (character >> 18));
    out[1] = (char)(0x80 | ((character >> 12) & 0x3F));
    out[2] = (char)(0x80 | ((character >> 6) & 0x3F));
    out[3] = (char)(0x80 | (character & 0x3F));
    return 4;
}

/// A path field of 32-bit characters (wszFwPath, wszDumpFile, wszSettingFile) as a C string in
/// UTF-8. A full field has no terminator, so it must not be passed to a C function itself.
/// RETURNS out.
static inline char *ScalerIspWidePath(const wchar_t field[SCALER_ISP_PATH_CHARS],
                                      char out[SCALER_ISP_PATH_BYTES]) {
    size_t bytes = 0;
    size_t i;
    for (i = 0; i < SCALER_ISP_PATH_CHARS && field[i] != 0; ++i) {
        bytes += ScalerIspEncodeUtf8((uint32_t)field[i], out + bytes);
    }
    out[bytes] = '\0';
    return out;
}

/// A path field of bytes (szFwFile, szSignatureFile and their neighbours, szBootFwPath) as a C
/// string. RETURNS out.
static inline char *ScalerIspPath(const char field[SCALER_ISP_PATH_CHARS],
                                  char out[SCALER_ISP_PATH_BYTES]) {
    size_t i;
    for (i = 0; i < SCALER_ISP_PATH_CHARS && field[i] != '\0'; ++i) {
        out[i] = field[i];
    }
    out[i] = '\0';
    return out;
}

/// The callbacks of the host and the progress of the running action; one static object per plug-in.
typedef struct ScalerIspUi {
    ScalerIspProgressCallback progress; ///< may be null
    ScalerIspMessageCallback message;   ///< may be null
    int percent;                        ///< the last one reported; -1: none
} ScalerIspUi;

/// For SetUIFunction.
static inline void ScalerIspSetUi(ScalerIspUi *ui, ScalerIspProgressCallback progress,
                                  ScalerIspMessageCallback message) {
    ui->progress = progress;
    ui->message = message;
    ui->percent = -1;
}

/// Reports done of total, from 0 to 100 percent, if it is more than was reported before.
static inline void ScalerIspReportProgress(ScalerIspUi *ui, uint64_t done, uint64_t total) {
    const int percent = done >= total ? 100 : (int)((double)done * 100.0 / (double)total);
    if (percent > ui->percent) {
        ui->percent = percent;
        if (ui->progress != NULL) {
            ui->progress(percent);
        }
    }
}

/// At the begin of an action: reports 0 percent.
static inline void ScalerIspBeginProgress(ScalerIspUi *ui) {
    ui->percent = -1;
    ScalerIspReportProgress(ui, 0, 1);
}

/// Decodes one character of UTF-8 and advances the position past it. What is not UTF-8 becomes '?'.
static inline uint32_t ScalerIspDecodeUtf8(const char **position) {
    static const uint32_t least[4] = {0, 0x80, 0x800, 0x10000};
    const unsigned char first = (unsigned char)*(*position)++;
    const int more = first < 0xC0 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    uint32_t value = more == 0 ? first : (uint32_t)(first & (0x3F >> more));
    int i;
    if (first >= 0x80 && (first < 0xC0 || first > 0xF4)) {
        return '?';
    }
    for (i = 0; i < more; ++i) {
        if (((unsigned char)**position & 0xC0) != 0x80) {
            return '?';
        }
        value = (value << 6) | (uint32_t)((unsigned char)*(*position)++ & 0x3F);
    }
    return value < least[more] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF) ? '?'
                                                                                           : value;
}

/// Sends a message in UTF-8 to the host, with a newline added. Control characters become spaces: a
/// file name in a message could otherwise act on the user's terminal.
static inline void ScalerIspSendMessage(const ScalerIspUi *ui, const char *text) {
    wchar_t wide[SCALER_ISP_MESSAGE_CHARS];
    size_t length = 0;
    while (*text != '\0' && length < SCALER_ISP_MESSAGE_CHARS - 2) {
        const uint32_t value = ScalerIspDecodeUtf8(&text);
        wide[length++] = (wchar_t)(value < 0x20 || (value >= 0x7F && value < 0xA0) ? ' ' : value);
    }
    wide[length++] = L'\n';
    wide[length] = 0;
    if (ui->message != NULL) {
        ui->message(wide);
    }
}

#endif
