#ifndef SCALER_ISP_COMMON_PATH_RESOLUTION_H
#define SCALER_ISP_COMMON_PATH_RESOLUTION_H

#include <string>
#include <vector>

/// The path functions that the library itself calls. They behave as those of Paths.h, but throw
/// (CallFailure, std::bad_alloc) if a failure says nothing about the path.

/// As GetAbsolutePath.
std::string ResolvePath(const std::string &path);

/// As GetFileFullPath.
std::string ResolveFile(const std::string &file, const std::string &directory);

/// Whether the path goes through a file as if it were a directory ("file/", "file/..", "file/x").
/// No system opens such a path, but realpath of macOS resolves most of them.
bool UsesFileAsDirectory(const std::string &path);

/// As PathFileExist.
bool CanBeOpened(const std::string &path);

/// The names in a directory that end with `ending` and are longer than it, in the order of the
/// listing. A directory that does not exist or may not be read has none; an incomplete listing
/// throws.
std::vector<std::string> ListNames(const std::string &directory, const std::string &ending);

#endif
