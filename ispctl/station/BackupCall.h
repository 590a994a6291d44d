#ifndef ISPCTL_STATION_BACKUP_CALL_H
#define ISPCTL_STATION_BACKUP_CALL_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "LibraryProcess.h"
#include "ScalerLibrary.h"
#include "line/CheckLine.h"
#include "station/Backup.h"

namespace ispctl {

/// The result of one call of the library.
struct JudgedResult {
    RunResult result;
    std::string detail; ///< beyond the code; may be empty
};

using LibraryCall = std::function<JudgedResult(const std::wstring &line, const Records *records)>;

/// In the library's process: lets the plug-in read the ranges into their files, and reports each
/// backup to ispctl. A file of a failed backup is removed. If ispctl
/// does not answer, the run ends: nothing is programmed that nobody follows.
/// \param arguments  of the line that programs the ranges
/// RETURNS the result with which the run ends; nothing if every range was read.
std::optional<JudgedResult> BackUp(const std::vector<BackupRange> &ranges,
                                   const std::vector<std::string> &arguments,
                                   const ScalerLibrary &library, const LineContext &context,
                                   const LibraryCall &call, ParentLink &link);

} // namespace ispctl

#endif
