#ifndef SCALER_ISP_PLUGINS_DEVICE_LIBRARY_H
#define SCALER_ISP_PLUGINS_DEVICE_LIBRARY_H

#include "scaler_isp/abi/CommTypes.h"
#include "scaler_isp/abi/Export.h"

/// The device library: plain functions of one device, held in process-wide pointers for host code.
/// This library never calls through them. Loading and freeing from two threads at once is not
/// supported.

/// The types of the functions, by the names of comm_functions.def.
struct CommFunctionType {
    using Opaque = unsigned int();
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    using METHOD = RESULT PARAMETERS;
#include "scaler_isp/plugins/comm_functions.def"
};

extern SCALER_ISP_API void *g_hDeviceDll; ///< handle of the open device library, or null

/// The pointers, null where nothing is loaded. device_functions.def tells which ones a load fills.
// QUIRK Only_the_first_37_pointers_are_ever_set: the other 42 are null for the life of the process.
#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE)                            \
    extern SCALER_ISP_API CommFunctionType::TYPE_OF *nxd##NAME;
#include "scaler_isp/plugins/device_functions.def"

/// Closes a library loaded before, then opens the one at `path` and looks its functions up.
/// PRINTS "Failed to open libaray %s error:%s\n" to standard error where it cannot be opened; for a
/// missing required function the pointer's name and " Fail\n" to standard output.
/// RETURNS 1 when loaded; 5 where it cannot be opened; for a missing function 0 or 5.
// QUIRK Missing_InitialDev_or_ReleaseDev_returns_5: every other missing function returns 0.
SCALER_ISP_API int nxdLoadDeviceDllFile(wchar_t *path);

/// Closes the library and clears the pointers that a load fills; does nothing when none is loaded.
SCALER_ISP_API void nxdFreeDeviceDllFile();

#endif
