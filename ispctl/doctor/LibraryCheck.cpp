#include "doctor/LibraryCheck.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "Environment.h"
#include "chip/ChipDirectories.h"
#include "doctor/FileState.h"
#include "doctor/Probe.h"

namespace ispctl::doctor {
namespace {

// The library's own limits.
constexpr std::size_t kMostPathBytes = 260;
constexpr std::size_t kMostSettingPath = 259;

// RETURNS whether the directory is there.
bool CheckDirectory(const Places &places, Report &report) {
    const std::string directory = places.directory.string();
    const FileState state = StateOf(places.directory);
    if (state.kind != FileState::Kind::Directory) {
        report.Add(FindingId::DirectoryMissing, directory, state.description);
        return false;
    }
    if (::access(directory.c_str(), R_OK) != 0) {
        report.Add(FindingId::DirectoryUnlistable, directory, std::strerror(errno));
    } else {
        report.Add(FindingId::DirectoryReadable, directory);
    }
    if (directory.size() + 1 > kMostPathBytes) {
        report.Add(FindingId::DirectoryTooLong, directory, std::to_string(directory.size()));
    }
    const std::string setting = places.settingFile.string();
    const std::size_t characters = CountCharactersOfEnvironment(setting).value_or(setting.size());
    if (characters > kMostSettingPath) {
        report.Add(FindingId::SettingPathTooLong, setting, std::to_string(characters));
    }
    return true;
}

} // namespace

const LoadFindings &FindingsOfLibrary() {
    static constexpr LoadFindings kFindings{
        FindingId::LibraryMissing,     FindingId::LibraryUnreadable,
        FindingId::LibraryNotFile,     FindingId::LibraryWrongType,
        FindingId::LibraryWrongSystem, FindingId::LibraryWrongArchitecture,
        FindingId::LibraryNotLoaded,   FindingId::LibraryNotLoaded,
        FindingId::LibraryNotLoaded};
    return kFindings;
}

bool CheckLibrary(const Places &places, Report &report, WriteAccess &access) {
    const std::string file = places.library.string();
    std::string description;
    if (!CheckDirectory(places, report) ||
        !CheckLoadable(file, FindingsOfLibrary(), report, description)) {
        return true;
    }
    std::error_code ignored;
    if (IsInChipDirectory(places.library) && std::filesystem::is_symlink(places.library, ignored)) {
        report.Add(FindingId::LibraryIsLink, file);
    }
    access.Check(places.library);
    const ProbeOutcome outcome = RunProbe({kProbeCommand, "search", file, ""});
    if (outcome.interrupted) {
        return false;
    }
    if (const Notice *refused = outcome.Find("library-refused"); refused != nullptr) {
        report.Add(FindingId::LibraryNotLoaded, file, refused->back());
    } else if (outcome.Find("library-loaded") != nullptr) {
        report.Add(FindingId::LibraryLoads, file);
    }
    if (!outcome.end.empty()) {
        report.Add(FindingId::LibraryEnds, file, outcome.end);
    }
    return true;
}

} // namespace ispctl::doctor
