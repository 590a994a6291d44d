#ifndef SCALER_ISP_BENCH_SCRATCH_FOLDER_H
#define SCALER_ISP_BENCH_SCRATCH_FOLDER_H

#include <cstdint>
#include <string>

/// A directory for the files of one measurement; the destructor removes it and its files.
class ScratchFolder {
  public:
    /// \param base  parent directory; empty: the directory for temporary files.
    explicit ScratchFolder(const std::string &base = "");
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    /// Creates a sparse file of this size, which takes no time to write. Throws on failure.
    void AddFile(const std::string &name, std::uintmax_t size);

    /// Ends in "/".
    const std::string &Path() const {
        return m_path;
    }

  private:
    std::string m_path;
};

#endif
