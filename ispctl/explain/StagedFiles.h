#ifndef ISPCTL_EXPLAIN_STAGED_FILES_H
#define ISPCTL_EXPLAIN_STAGED_FILES_H

#include <string>
#include <string_view>
#include <vector>

namespace ispctl {

/// Output files that appear completely or not at all: each is written under a temporary name in its
/// directory and renamed when all of them are written. Devices and pipes are written before that.
class StagedFiles {
  public:
    StagedFiles() = default;
    /// Removes what was not committed.
    ~StagedFiles();
    StagedFiles(const StagedFiles &) = delete;
    StagedFiles &operator=(const StagedFiles &) = delete;

    /// Writes the bytes under a temporary name; those of a device or pipe are kept until Commit. A
    /// pipe that nobody reads is a failure: opening it would wait for ever.
    /// RETURNS false on failure, with the reason in error.
    bool Add(const std::string &name, std::string_view bytes, std::string &error);
    /// Gives all files their names. RETURNS false on failure, with the reason in error.
    bool Commit(std::string &error);

  private:
    struct File {
        std::string name;      ///< with symbolic links resolved
        std::string temporary; ///< empty: bytes are written to the descriptor
        std::string bytes;
        int descriptor = -1; ///< of a device or pipe
    };
    bool AddSpecial(const std::string &name, std::string_view bytes, std::string &error);
    std::vector<File> m_files;
};

} // namespace ispctl

#endif
