#ifndef ISPCTL_STATION_RUN_PREPARATION_H
#define ISPCTL_STATION_RUN_PREPARATION_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LibraryProcess.h"
#include "RunCommand.h"
#include "line/CheckLine.h"
#include "station/Backup.h"
#include "station/DeviceLock.h"

namespace ispctl {

/// What the library's process makes ready between the checks and the call.
struct RunPreparation {
    std::vector<std::string> arguments; ///< with the names of the private copies
    std::optional<DeviceLock> lock;     ///< held until the process ends
    std::vector<BackupRange> backups;
    /// Of these arguments, with the files as they are now; null if they are not known.
    std::shared_ptr<const Records> records;
};

/// Locks the device, hashes and copies the files and plans the backups, as far as the options ask
/// for it, and reports the files to ispctl.
/// \param library  absolute path
/// \param records  of the line when it was checked; null if they are not known
/// RETURNS nothing if the library must not be called, after reporting why.
std::optional<RunPreparation> PrepareRun(const RunOptions &options,
                                         const std::filesystem::path &library,
                                         const LineContext &context,
                                         const std::shared_ptr<const Records> &records,
                                         ParentLink &link);

} // namespace ispctl

#endif
