/* A sign/verify plug-in for tests; see isp_module.c. */

#include "report_call.h"

#ifndef WITHOUT_SignFwExport
MODULE_EXPORT int SignFwExport(void *args);
int SignFwExport(void *args) {
    return ReportCall("SignFwExport", args, NULL, NULL);
}
#endif

#ifndef WITHOUT_VerifySignatureExport
MODULE_EXPORT int VerifySignatureExport(void *args, char *key);
int VerifySignatureExport(void *args, char *key) {
    return ReportCall("VerifySignatureExport", args, key, NULL);
}
#endif

MODULE_EXPORT int UnrelatedExport(void);
int UnrelatedExport(void) {
    return ReportCall("UnrelatedExport", NULL, NULL, NULL);
}
