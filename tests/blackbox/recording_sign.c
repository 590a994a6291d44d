/* A sign/verify plug-in that does nothing but write down how it is called and answer as it is told.
 * With -DWITHOUT_NAME it lacks the function NAME. */

#include <stdlib.h>
#include <string.h>

#include "scaler_isp/abi/SignVerifyPlugin.h"

#include "journal.h"
#include "record_journal.h"

#if !defined(WITHOUT_SignFwExport) || !defined(WITHOUT_VerifySignatureExport)
static int answer_call(const char *function, int call) {
    struct answer answers[JOURNAL_MAX_ANSWERS];
    size_t count = journal_answers(function, call, answers);
    size_t i;
    int result = 1;
    for (i = 0; i < count; ++i) {
        if (strcmp(answers[i].verb, "returns") == 0) {
            result = (int)strtoul(answers[i].argument, NULL, 0);
        } else if (strcmp(answers[i].verb, "prints") == 0) {
            printf("%s\n", answers[i].argument);
        }
    }
    return result;
}
#endif

#ifndef WITHOUT_SignFwExport
SCALER_ISP_API int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) {
    static int calls;
    FILE *journal = journal_begin("SignFwExport");
    journal_sign_args(journal, args);
    journal_end(journal);
    return answer_call("SignFwExport", ++calls);
}
#endif

#ifndef WITHOUT_VerifySignatureExport
SCALER_ISP_API int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args,
                                         char *keyFromFlash) {
    static int calls;
    FILE *journal = journal_begin("VerifySignatureExport");
    journal_sign_args(journal, args);
    if (keyFromFlash == NULL && journal != NULL) {
        fputs(" key=null", journal);
    } else if (keyFromFlash != NULL) {
        journal_bytes(journal, "key", (const unsigned char *)keyFromFlash,
                      SCALER_ISP_FLASH_KEY_BYTES);
    }
    journal_end(journal);
    return answer_call("VerifySignatureExport", ++calls);
}
#endif
