/* An ISP plug-in that does nothing but write down how it is called and answer as it is told. With
 * -DWITHOUT_NAME it lacks the function NAME. */

#include <stdlib.h>
#include <string.h>

#include "scaler_isp/abi/IspPlugin.h"

#include "journal.h"
#include "record_journal.h"
#include "wide_text.h"

static ScalerIspProgressCallback g_progress;
static ScalerIspMessageCallback g_message;

static void carry_out(const struct answer *answer, unsigned char *key, int *result) {
    if (strcmp(answer->verb, "returns") == 0) {
        *result = (int)strtoul(answer->argument, NULL, 0);
    } else if (strcmp(answer->verb, "progress") == 0 && g_progress != NULL) {
        g_progress(atoi(answer->argument));
    } else if (strcmp(answer->verb, "message") == 0 && g_message != NULL) {
        wchar_t text[1024];
        utf8_to_wide(answer->argument, text);
        g_message(text);
    } else if (strcmp(answer->verb, "prints") == 0) {
        printf("%s\n", answer->argument);
    } else if (strcmp(answer->verb, "key") == 0 && key != NULL) {
        memset(key, 0x5A, strtoul(answer->argument, NULL, 10));
    }
}

static int answer_call(const char *function, int call, unsigned char *key) {
    struct answer answers[JOURNAL_MAX_ANSWERS];
    size_t count = journal_answers(function, call, answers);
    size_t i;
    int result = 0;
    for (i = 0; i < count; ++i) {
        carry_out(&answers[i], key, &result);
    }
    return result;
}

#define RECORDING_FUNCTION(NAME)                                                                   \
    SCALER_ISP_API int NAME(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) {                      \
        static int calls;                                                                          \
        FILE *journal = journal_begin(#NAME);                                                      \
        journal_command_setting(journal, setting);                                                 \
        journal_end(journal);                                                                      \
        return answer_call(#NAME, ++calls, NULL);                                                  \
    }

/* Functions that the library must never look up. */
#define FORBIDDEN_FUNCTION(NAME)                                                                   \
    SCALER_ISP_API int NAME(void);                                                                 \
    SCALER_ISP_API int NAME(void) {                                                                \
        journal_end(journal_begin("MUST-NOT-BE-CALLED " #NAME));                                   \
        return 0;                                                                                  \
    }

#ifndef WITHOUT_SetUIFunction
SCALER_ISP_API void SetUIFunction(ScalerIspProgressCallback progress,
                                  ScalerIspMessageCallback message,
                                  ScalerIspHubDeviceCallback hubDevice) {
    static int calls;
    FILE *journal = journal_begin("SetUIFunction");
    g_progress = progress;
    g_message = message;
    if (journal != NULL) {
        fprintf(journal, " progress=%s message=%s hubDevice=%s", progress == NULL ? "null" : "set",
                message == NULL ? "null" : "set", hubDevice == NULL ? "null" : "set");
    }
    journal_end(journal);
    answer_call("SetUIFunction", ++calls, NULL);
}
#endif

#ifndef WITHOUT_GetKeyFromFlash
SCALER_ISP_API int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                                   unsigned char *key) {
    static int calls;
    FILE *journal = journal_begin("GetKeyFromFlash");
    journal_command_setting(journal, setting);
    journal_bytes(journal, "key", key, 1220);
    journal_end(journal);
    return answer_call("GetKeyFromFlash", ++calls, key);
}
#endif

#ifndef WITHOUT_SetCommInterface
SCALER_ISP_API void SetCommInterface(CNxComm *comm) {
    (void)comm;
    journal_end(journal_begin("MUST-NOT-BE-CALLED SetCommInterface"));
}
#endif

#ifndef WITHOUT_IspFlash
RECORDING_FUNCTION(IspFlash)
#endif
#ifndef WITHOUT_RecordFWVersion
RECORDING_FUNCTION(RecordFWVersion)
#endif
#ifndef WITHOUT_DumpFlash
RECORDING_FUNCTION(DumpFlash)
#endif
#ifndef WITHOUT_GetUserDefinedInfoFromDDCCI
RECORDING_FUNCTION(GetUserDefinedInfoFromDDCCI)
#endif
#ifndef WITHOUT_IspEeprom
RECORDING_FUNCTION(IspEeprom)
#endif
#ifndef WITHOUT_EnterISPModeExport
RECORDING_FUNCTION(EnterISPModeExport)
#endif
#ifndef WITHOUT_ResetMCUExport
RECORDING_FUNCTION(ResetMCUExport)
#endif
#ifndef WITHOUT_GetScalerType
RECORDING_FUNCTION(GetScalerType)
#endif

FORBIDDEN_FUNCTION(SetIDev)
FORBIDDEN_FUNCTION(GetFWInfo)
FORBIDDEN_FUNCTION(SendUserDefinedInfo)
FORBIDDEN_FUNCTION(ChipEraseFlash)
FORBIDDEN_FUNCTION(GetMergeFwInfo)
FORBIDDEN_FUNCTION(SetMergeFwInfo)
FORBIDDEN_FUNCTION(I2CWriteExport)
FORBIDDEN_FUNCTION(BankEraseFlash)
