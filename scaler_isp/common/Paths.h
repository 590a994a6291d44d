#ifndef SCALER_ISP_COMMON_PATHS_H
#define SCALER_ISP_COMMON_PATHS_H

#include <string>

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Paths are UTF-8, with "/" as the separator. None of these functions prints anything.

/// Directory of the loaded file that contains `address`, ending in "/": on Linux by the path by
/// which the file was opened, on macOS by its real path (symbolic links resolved).
/// \param address  an address inside a loaded library, or null for the running executable. For the
///                 directory of this library pass that of OperateScaler as dlsym returns it:
///                 `&OperateScaler` in a program compiled without position-independent code is an
///                 address in the program itself on ELF systems.
/// RETURNS the empty string if the directory cannot be determined or expressed. UNITS: a path is
/// truncated to 260 bytes.
///
/// The path is decoded in the encoding of the environment's locale; on Linux, as UTF-8 if that
/// fails.
SCALER_ISP_API CCpNxString GetCurrentProcessDir(void *address);

/// The parent directory, ending in "/": "a/" for "a/b/" and for "a/b"; empty for a bare name.
SCALER_ISP_API CCpNxString GetParentDir(CCpNxString path);

/// Whether the path begins with "/", or with a drive or a one-letter scheme ("C:\", "a://").
SCALER_ISP_API bool IsAbsolutePath(const std::string &path);

/// The file itself if it is absolute, else GetAbsolutePath of directory and file, concatenated.
/// REQUIRES: the directory ends in "/".
SCALER_ISP_API std::string GetFileFullPath(const std::string &file, const std::string &directory);

/// The path resolved by realpath (POSIX). If a part of it is missing or not accessible, the
/// resolved path up to and including that part; for any other error the empty string. Both are the
/// same on Linux and macOS.
SCALER_ISP_API std::string GetAbsolutePath(const std::string &path);

/// RETURNS 1 if the path can be opened for reading, else 0. A directory counts as a file; a FIFO
/// blocks.
SCALER_ISP_API int PathFileExist(const std::string &path);

/// Does nothing and returns 1, because this library has no file dialog. The path is unchanged.
SCALER_ISP_API int PopupDlgToGetOpenFilePath(CCpNxString title, CCpNxString &path);

#endif
