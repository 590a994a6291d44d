#ifndef ISPCTL_SCALER_LIBRARY_H
#define ISPCTL_SCALER_LIBRARY_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "scaler_isp/OperateScaler.h"

namespace ispctl {

/// One ScalerIsp library, opened by path. The library looks for its plug-ins beside the path by
/// which it was opened, and the loader opens one file only once, so a process opens one library
/// only.
class ScalerLibrary {
  public:
    /// Opens the library; links in the path are not followed, a relative path is the caller's.
    /// The library stays open until the process ends: its plug-ins may, too.
    /// RETURNS nothing on failure, with the reason in error.
    static std::optional<ScalerLibrary> Open(const std::filesystem::path &file, std::string &error);

    /// The folder against which the library resolves relative names.
    std::filesystem::path Folder() const {
        return m_path.parent_path();
    }
    const std::filesystem::path &Path() const {
        return m_path;
    }

    /// For functions beside those of a run, as dlopen gave it.
    void *Handle() const {
        return m_handle;
    }

    /// Splits a line exactly as the library does.
    /// RETURNS nothing where the library refuses the line.
    std::optional<std::vector<std::string>> Split(const std::string &line) const;

    /// Carries out one command line; see OperateScaler.
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
