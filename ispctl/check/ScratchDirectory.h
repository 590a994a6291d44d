#ifndef ISPCTL_CHECK_SCRATCH_DIRECTORY_H
#define ISPCTL_CHECK_SCRATCH_DIRECTORY_H

#include <filesystem>

namespace ispctl::check {

/// A new directory for temporary files with what calls are given: a firmware, and a key and a
/// signature that nobody has made. Removed with everything in it at the end.
class ScratchDirectory {
  public:
    /// Throws std::exception if it cannot be created.
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    const std::filesystem::path &Path() const {
        return m_path;
    }

  private:
    explicit ScratchDirectory(std::filesystem::path made);

    std::filesystem::path m_path;
};

} // namespace ispctl::check

#endif
