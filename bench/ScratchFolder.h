#ifndef SCALER_ISP_BENCH_SCRATCH_FOLDER_H
#define SCALER_ISP_BENCH_SCRATCH_FOLDER_H

#include <cstdint>
#include <string>

/// A folder for the files of one measurement; it goes with the object, files included.
class ScratchFolder {
  public:
    /// \param base  where the folder is made; empty: the place for temporary files.
    explicit ScratchFolder(const std::string &base = "");
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    /// Makes a file of this many bytes, all holes. Throws where that fails.
    void AddFile(const std::string &name, std::uintmax_t size);

    /// Ends in "/".
    const std::string &Path() const {
        return m_path;
    }

  private:
    std::string m_path;
};

#endif
