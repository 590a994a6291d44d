#ifndef SCALER_ISP_COMMON_PATHS_H
#define SCALER_ISP_COMMON_PATHS_H

#include <string>

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Paths are UTF-8 with "/" between the parts. None of these functions prints anything.

/// The folder of the file that holds an address, ending in "/"; links are not followed.
/// \param address  an address inside a loaded library, or null for the running executable. For the
///                 directory of this library pass that of OperateScaler as dlsym returns it:
///                 `&OperateScaler` in a program compiled without position-independent code is an
///                 address in the program itself on ELF systems.
/// RETURNS the empty text if it cannot be found or expressed. UNITS: a path is cut at 260 bytes.
///
/// The path is read in the encoding of the environment's locale; on Linux, where that fails, as
/// UTF-8.
SCALER_ISP_API CCpNxString GetCurrentProcessDir(void *address);

/// The parent folder, ending in "/": of "a/b/" and of "a/b" it is "a/"; of a bare name it is empty.
SCALER_ISP_API CCpNxString GetParentDir(CCpNxString path);

/// Whether the path begins with "/", or with a drive or a one-letter scheme ("C:\", "a://").
SCALER_ISP_API bool IsAbsolutePath(const std::string &path);

/// The file itself when it is absolute, else GetAbsolutePath of directory and file joined as they
/// are; so the directory must end in "/".
SCALER_ISP_API std::string GetFileFullPath(const std::string &file, const std::string &directory);

/// The path resolved by realpath (POSIX). For a path that does not resolve, what realpath left: on
/// Linux the full path of a file missing in an existing folder, otherwise a part of it or nothing.
SCALER_ISP_API std::string GetAbsolutePath(const std::string &path);

/// 1 when the path can be opened for reading, else 0. A folder counts as a file; a FIFO blocks.
SCALER_ISP_API int PathFileExist(const std::string &path);

/// Does nothing and returns 1: this library has no file dialog. The path stays as it is.
SCALER_ISP_API int PopupDlgToGetOpenFilePath(CCpNxString title, CCpNxString &path);

#endif
