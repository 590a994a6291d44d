#ifndef SCALER_ISP_PLUGINS_DEVICE_LIBRARY_H
#define SCALER_ISP_PLUGINS_DEVICE_LIBRARY_H

#include "scaler_isp/abi/CommTypes.h"
#include "scaler_isp/abi/Export.h"

/// The device library: plain functions of one device, in process-wide pointers for host code. This
/// library never calls them. Loading and freeing are not thread-safe.

/// The types of the functions, named as in comm_functions.def.
struct CommFunctionType {
    using Opaque = unsigned int();
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    using METHOD = RESULT PARAMETERS;
#include "scaler_isp/plugins/comm_functions.def"
};

extern SCALER_ISP_API void *g_hDeviceDll; ///< handle of the open device library, or null

/// The pointers, null while nothing is loaded. device_functions.def defines which ones a load sets.
// QUIRK Only_the_first_37_pointers_are_ever_set: the other 42 stay null.
#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE)                            \
    extern SCALER_ISP_API CommFunctionType::TYPE_OF *nxd##NAME;
#include "scaler_isp/plugins/device_functions.def"

/// Closes the current library, then opens the one at `path` and looks up its functions.
/// PRINTS "Failed to open libaray %s error:%s\n" to standard error if it cannot be opened; for a
/// missing required function the pointer's name and " Fail\n" to standard output.
/// RETURNS 1 if loaded; 5 if it cannot be opened; 0 or 5 if a required function is missing.
// QUIRK Missing_InitialDev_or_ReleaseDev_returns_5: for any other missing function, a load returns
// 0.
SCALER_ISP_API int nxdLoadDeviceDllFile(wchar_t *path);

/// Closes the library and resets the pointers that a load sets; does nothing if none is loaded.
SCALER_ISP_API void nxdFreeDeviceDllFile();

#endif
