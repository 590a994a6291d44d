#ifndef ISPCTL_STATION_FILE_DIGEST_H
#define ISPCTL_STATION_FILE_DIGEST_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace ispctl {

/// What names the content of a file.
struct FileDigest {
    std::uint64_t size = 0; ///< UNITS: bytes
    std::string sha256;     ///< 64 hexadecimal digits
};

/// Reads a regular file; anything else (a pipe, a device) is an error, because reading it may never
/// end. RETURNS nothing on failure, with the reason in error.
std::optional<FileDigest> DigestOf(const std::filesystem::path &file, std::string &error);

/// Copies a regular file to a new file that only its owner can read. What is hashed is what was
/// copied. A file whose size changes meanwhile is an error.
/// RETURNS nothing on failure, with the reason in error.
std::optional<FileDigest> CopyFile(const std::filesystem::path &file,
                                   const std::filesystem::path &copy, std::string &error);

} // namespace ispctl

#endif
