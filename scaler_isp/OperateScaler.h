#ifndef SCALER_ISP_OPERATE_SCALER_H
#define SCALER_ISP_OPERATE_SCALER_H

/// \file
/// The two entry points of the library. C99 and C++.
///
/// Calling rules
///  - One call at a time in a process; the library starts no thread, and both callbacks run on the
///    caller's thread. 512 KiB of stack are enough.
///  - The first argument of the command line is the program's name and is not an option. Arguments
///    are separated by spaces; a tab does not separate. Double quotes keep spaces inside an
///    argument. A line holds at most 10,239 bytes of UTF-8.
///  - Diagnostics go to standard output and standard error through C stdio. Standard output is
///    flushed once, when the call returns; a flush that fails changes no result. A run that loads a
///    plug-in or fails to ends with one coloured line, "Success" or "Fail! Error Code: 0x…"; only a
///    successful --userdefinedinfo prints none.
///    WARNING: once a host has made stdout wide-oriented (fwide, wprintf, std::wcout), printf to it
///    fails and all diagnostics on it are lost.
///  - The path of the library is converted in a thread locale made from the environment (LC_ALL,
///    LC_CTYPE, LANG). The locale of the process and the host's uselocale neither matter nor
///    change. For paths outside ASCII the environment should name a UTF-8 locale.
///  - Nothing is thrown: an exception of a callback or plug-in ends here, with result -1.
///    pthread_exit in a callback ends the thread cleanly.

#include <stddef.h>

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/abi/ResultCodes.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Runs one command line.
///
/// \param commandLine   NUL-terminated, borrowed; null counts as empty.
/// \param deviceHandle  ignored: the plug-in always works without one.
/// \param progress      receives the progress in percent, or null.
/// \param message       receives messages for the user, or null.
/// RETURNS 0 for success; -1 if the command line was refused (mostly with a message) or the call
/// failed; otherwise a code of ResultCodes.h or of the plug-in. A call fails if the system does (no
/// memory, no descriptor, an I/O error), or if a plug-in or callback threw or returned -1; the
/// state of the device is then unknown. 0 is also returned if there is no memory for the parser
/// itself.
/// PRINTS only what ParseArgs and DoIsp print.
SCALER_ISP_API int OperateScaler(const wchar_t *commandLine, void *deviceHandle,
                                 ScalerIspProgressCallback progress,
                                 ScalerIspMessageCallback message);

/// The same as OperateScaler; reserved is accepted and not used.
SCALER_ISP_API int OperateScalerEx(const wchar_t *commandLine, void *deviceHandle,
                                   ScalerIspProgressCallback progress,
                                   ScalerIspMessageCallback message, void *reserved);

#ifdef __cplusplus
}
#endif

#endif
