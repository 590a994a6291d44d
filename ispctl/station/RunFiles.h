#ifndef ISPCTL_STATION_RUN_FILES_H
#define ISPCTL_STATION_RUN_FILES_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "JsonText.h"
#include "line/CheckLine.h"
#include "station/FileDigest.h"

namespace ispctl {

/// A file that decides what a run does.
struct RunFile {
    std::string role;           ///< the option, such as "fw1" or "vkfile", or the plug-in
    std::string given;          ///< as the user typed it; empty for a file that nobody typed
    std::filesystem::path path; ///< absolute, of the original
    std::filesystem::path copy; ///< what the run uses instead; empty: the original
    std::optional<FileDigest> digest;
    std::string problem; ///< why there is no digest
    /// The option that names the file: index of its argument in ARGS.
    std::optional<std::size_t> argument;
};

/// {"role":T,"path":T,"size":N,"sha256":T}; with a copy "copy" and "given", without a digest
/// "problem".
Json RunFileJson(const RunFile &file);

/// The firmware, boot and signature files that the action of the line uses, without digests.
/// \param records  of the line, for the file that a firmware search has found; may be null
std::vector<RunFile> InputFiles(const std::vector<std::string> &arguments,
                                const LineContext &context, const Records *records);

/// The key, certificate and settings files that the line names, with digests.
std::vector<RunFile> CompanionFiles(const std::vector<std::string> &arguments,
                                    const LineContext &context);

/// The library and its plug-ins as far as they exist, with digests.
std::vector<RunFile> InstalledFiles(const std::filesystem::path &library);

/// Whether the library's records have the capacity for this path. A longer one would be cut.
bool FitsRecord(const std::filesystem::path &path);

/// Stores digest or problem.
void AddDigest(RunFile &file);

/// Whether the line programs or verifies, so that nobody may exchange its files meanwhile.
bool UsesInputFiles(const std::vector<std::string> &arguments);
/// Whether the line has exactly one action, and that one does not program.
bool DoesNotProgram(const std::vector<std::string> &arguments);

/// The number of the communication interface; 0: the line names none.
int InterfaceOf(const std::vector<std::string> &arguments);

/// The options of the line that select the device and how it is reached.
std::vector<std::string> DeviceArguments(const std::vector<std::string> &arguments);

} // namespace ispctl

#endif
