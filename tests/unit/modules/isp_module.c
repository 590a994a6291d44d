/* An ISP plug-in for tests: every function hands its name and arguments to the test. Built several
 * times, with one function left out each (WITHOUT_name) or with all there are (WITH_EXTRAS). */

#include "report_call.h"

#define RECORD_FUNCTION(NAME)                                                                      \
    MODULE_EXPORT int NAME(void *setting);                                                         \
    int NAME(void *setting) {                                                                      \
        return ReportCall(#NAME, setting, NULL, NULL);                                             \
    }

#ifndef WITHOUT_IspFlash
RECORD_FUNCTION(IspFlash)
#endif
#ifndef WITHOUT_RecordFWVersion
RECORD_FUNCTION(RecordFWVersion)
#endif
#ifndef WITHOUT_DumpFlash
RECORD_FUNCTION(DumpFlash)
#endif
#ifndef WITHOUT_GetUserDefinedInfoFromDDCCI
RECORD_FUNCTION(GetUserDefinedInfoFromDDCCI)
#endif
#ifndef WITHOUT_IspEeprom
RECORD_FUNCTION(IspEeprom)
#endif
#ifndef WITHOUT_EnterISPModeExport
RECORD_FUNCTION(EnterISPModeExport)
#endif
#ifndef WITHOUT_ResetMCUExport
RECORD_FUNCTION(ResetMCUExport)
#endif
#ifndef WITHOUT_GetScalerType
RECORD_FUNCTION(GetScalerType)
#endif

#ifndef WITHOUT_GetKeyFromFlash
MODULE_EXPORT int GetKeyFromFlash(void *setting, unsigned char *key);
int GetKeyFromFlash(void *setting, unsigned char *key) {
    return ReportCall("GetKeyFromFlash", setting, key, NULL);
}
#endif

#ifndef WITHOUT_SetCommInterface
MODULE_EXPORT void SetCommInterface(void *comm);
void SetCommInterface(void *comm) {
    ReportCall("SetCommInterface", comm, NULL, NULL);
}
#endif

#ifndef WITHOUT_SetUIFunction
MODULE_EXPORT void SetUIFunction(void *progress, void *message, void *hub);
void SetUIFunction(void *progress, void *message, void *hub) {
    ReportCall("SetUIFunction", progress, message, hub);
}
#endif

#ifdef WITH_EXTRAS
RECORD_FUNCTION(SetIDev)
RECORD_FUNCTION(GetFWInfo)
RECORD_FUNCTION(SendUserDefinedInfo)
RECORD_FUNCTION(ChipEraseFlash)
RECORD_FUNCTION(GetMergeFwInfo)
RECORD_FUNCTION(SetMergeFwInfo)
RECORD_FUNCTION(I2CWriteExport)
RECORD_FUNCTION(BankEraseFlash)
#endif

#ifdef WITH_UNRESOLVED
extern int nobody_defines_this(void);
MODULE_EXPORT int Unresolved(void);
int Unresolved(void) {
    return nobody_defines_this();
}
#endif
