/* Plug-ins that tell the test what is done with them: when they are opened and closed, and which of
 * their functions is looked up. The loader asks for the address of such a function at every
 * look-up. Nobody calls them.
 *
 * WITH_DEVICE_FUNCTIONS: those of a device library; else those of the three other plug-ins. */

#include "modules/report_call.h"

#define HIDDEN __attribute__((visibility("hidden")))

typedef int (*Function)(void);

static int Nothing(void) {
    return 0;
}

#define TOLD_FUNCTION(NAME)                                                                        \
    HIDDEN Function Address_of_##NAME(void);                                                       \
    HIDDEN Function Address_of_##NAME(void) {                                                      \
        ReportCall(#NAME, NULL, NULL, NULL);                                                       \
        return Nothing;                                                                            \
    }                                                                                              \
    MODULE_EXPORT int NAME(void) __attribute__((ifunc("Address_of_" #NAME)));

#ifdef WITH_DEVICE_FUNCTIONS

#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE) TOLD_FUNCTION(SYMBOL)
#include "scaler_isp/plugins/device_functions.def"

#else

#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, ...) TOLD_FUNCTION(SYMBOL)
#include "scaler_isp/plugins/comm_functions.def"

#define SCALER_ISP_STATUS_FUNCTION(NAME, ...) TOLD_FUNCTION(NAME)
#define SCALER_ISP_VOID_FUNCTION(NAME, ...) TOLD_FUNCTION(NAME)
#define SCALER_ISP_DEVICE_FUNCTION(NAME, ...) TOLD_FUNCTION(NAME)
#include "scaler_isp/plugins/isp_functions.def"

TOLD_FUNCTION(SignFwExport)
TOLD_FUNCTION(VerifySignatureExport)

#endif

__attribute__((constructor)) static void Opened(void) {
    ReportCall("opened", NULL, NULL, NULL);
}

__attribute__((destructor)) static void Closed(void) {
    ReportCall("closed", NULL, NULL, NULL);
}
