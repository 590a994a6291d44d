#ifndef ISPCTL_SCALER_LIBRARY_H
#define ISPCTL_SCALER_LIBRARY_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "scaler_isp/OperateScaler.h"

namespace ispctl {

/// One ScalerIsp library, opened by path. A process opens only one: the library looks for its
/// plug-ins in the directory of the path by which it was opened, and the loader does not open the
/// same file again under another path.
class ScalerLibrary {
  public:
    /// Opens the library. Symbolic links in the path are not resolved; a relative path is relative
    /// to the current directory. Never closed, because plug-ins may still run code at the end of
    /// the process.
    /// RETURNS nothing on failure, with the reason in error.
    static std::optional<ScalerLibrary> Open(const std::filesystem::path &file, std::string &error);

    /// The directory against which the library resolves relative paths.
    std::filesystem::path Directory() const {
        return m_path.parent_path();
    }
    const std::filesystem::path &Path() const {
        return m_path;
    }

    /// The handle from dlopen, for functions that a run does not need.
    void *Handle() const {
        return m_handle;
    }

    /// Splits a line exactly as the library does.
    /// RETURNS nothing if the library rejects the line.
    std::optional<std::vector<std::string>> Split(const std::string &line) const;

    /// Runs one command line; see OperateScaler.
    int Run(const std::wstring &line, ScalerIspProgressCallback progress,
            ScalerIspMessageCallback message) const {
        return m_operate(line.c_str(), nullptr, progress, message);
    }

  private:
    using OperateFunction = int (*)(const wchar_t *, void *, ScalerIspProgressCallback,
                                    ScalerIspMessageCallback);
    using SplitFunction = int (*)(std::vector<std::string> &, const std::string &);

    std::filesystem::path m_path;
    void *m_handle = nullptr;
    OperateFunction m_operate = nullptr;
    SplitFunction m_split = nullptr;
};

} // namespace ispctl

#endif
