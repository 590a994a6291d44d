#ifndef ISPCTL_STATION_PRIVATE_COPIES_H
#define ISPCTL_STATION_PRIVATE_COPIES_H

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "station/RunFiles.h"
#include "station/StationOptions.h"

namespace ispctl {

/// The directory for the copies of one run. The library's process creates it; this object removes
/// it, whatever has become of that process, and must outlive it.
class PrivateDirectory {
  public:
    /// \param path  empty: there are no copies
    explicit PrivateDirectory(std::filesystem::path path) : m_path(std::move(path)) {}
    ~PrivateDirectory() {
        Remove();
    }
    PrivateDirectory(const PrivateDirectory &) = delete;
    PrivateDirectory &operator=(const PrivateDirectory &) = delete;

    void Remove() const;

  private:
    std::filesystem::path m_path;
};

/// A path in TMPDIR that nobody can foresee; nothing is created.
std::filesystem::path PrivatePath(const std::string &runId);

/// Whether the files of this line are copied.
bool WantsPrivateCopies(const StationOptions &options, bool verbatim,
                        const std::vector<std::string> &arguments);

/// Copies the files to a new directory that only this user can enter, and hashes what was copied.
/// RETURNS ARGS with the copies; the same ARGS on failure, with the reason in error.
std::vector<std::string> CopyInputs(const std::vector<std::string> &arguments,
                                    const std::filesystem::path &directory,
                                    std::vector<RunFile> &files, std::string &error);

} // namespace ispctl

#endif
