#ifndef ISPCTL_DOCTOR_FILE_STATE_H
#define ISPCTL_DOCTOR_FILE_STATE_H

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace ispctl::doctor {

/// What a path leads to, symbolic links followed.
struct FileState {
    enum class Kind { Regular, Missing, Unreachable, Directory, Special };
    Kind kind = Kind::Missing;
    std::string
        description; ///< "a directory", "a FIFO"; of an unreachable file the system's reason
};

/// Never opens the file, so nothing that it leads to can block.
FileState StateOf(const std::filesystem::path &path);

/// At most limit bytes from the beginning of a regular file; never blocks.
/// RETURNS nothing if it cannot be opened and read, with the system's reason in error.
std::optional<std::string> ReadBeginning(const std::filesystem::path &path, std::size_t limit,
                                         std::string &error);

} // namespace ispctl::doctor

#endif
