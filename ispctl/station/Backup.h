#ifndef ISPCTL_STATION_BACKUP_H
#define ISPCTL_STATION_BACKUP_H

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "line/ParsedLine.h"
#include "station/RunFiles.h"

namespace ispctl {

/// One range of the flash that is read into a file before it is programmed.
struct BackupRange {
    std::uint32_t firstBank = 0;
    std::uint32_t lastBank = 0;
    std::filesystem::path file; ///< absolute; does not exist

    std::uint32_t Address() const;
    std::uint32_t Bytes() const;
    std::string Banks() const; ///< "bank 3" or "banks 3 to 6"
};

/// The banks that a line programs: those of its firmware files, of its boot firmware and of its
/// user flag. What a plug-in programs besides is not known. Ascending, each once.
/// \param parse  the library's parser, for the boot firmware
std::vector<std::uint32_t>
BanksToBackUp(const Records &records,
              const std::function<ParsedLine(const std::vector<std::string> &)> &parse);

/// The ranges of these banks, each with a file in the directory.
std::vector<BackupRange> BackupRanges(const std::vector<std::uint32_t> &banks,
                                      const std::filesystem::path &directory,
                                      const std::string &runId);

/// Removes what a run that ended inside a backup has left in the directory, except complete files.
/// \param complete  JSON objects that CheckBackup has made
void RemovePartialBackups(const std::filesystem::path &directory, const std::string &runId,
                          const std::vector<std::string> &complete);

/// Makes the directory if it is missing. RETURNS false if no file can be made there, with the
/// reason in error.
bool PrepareBackupDirectory(const std::filesystem::path &directory, std::string &error);

/// The line that lets the plug-in read the range.
/// \param arguments  of the line that programs it
std::vector<std::string> BackupLine(const BackupRange &range,
                                    const std::vector<std::string> &arguments);

/// Examines what the plug-in wrote. RETURNS the record of the backup as JSON; empty on failure,
/// with the reason in error.
std::string CheckBackup(const BackupRange &range, std::string &error);

} // namespace ispctl

#endif
