#include "station/RunPreparation.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <thread>
#include <unistd.h>

#include "UtcTime.h"
#include "Utf8.h"
#include "station/PrivateCopies.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kBetweenAttempts{100};

bool Refuse(ParentLink &link, ExitStatus status, std::string_view stage, const std::string &text) {
    link.Send(FrameKind::Refused, EncodeRefusal({status, std::string(stage), text}));
    return false;
}

std::string InUse(const DeviceLock &lock, int interface) {
    return fmt::format("the device ({}) is in use by {}",
                       interface == 0 ? "no --comm" : fmt::format("--comm {}", interface),
                       lock.Holder().empty() ? "another run" : EscapeBytes(lock.Holder()).text);
}

bool LockDevice(const RunOptions &options, const fs::path &library, DeviceLock &lock,
                ParentLink &link) {
    const int interface = InterfaceOf(options.arguments);
    const auto &station = options.station;
    // Both processes, because the second one may outlive the first.
    const std::string holder =
        fmt::format("process {} (library process {}, run {}) since {}, library {}, station file {}",
                    ::getppid(), ::getpid(), station.runId, UtcTime(), library.string(),
                    fs::absolute(station.file).string());
    const auto end = Clock::now() + std::chrono::duration<double>(station.wait);
    bool isAnnounced = false;
    while (!lock.Take(holder)) {
        if (!lock.Problem().empty()) {
            return Refuse(link, kExitFileError, "files", lock.Problem());
        }
        if (Clock::now() >= end) {
            return Refuse(link, kExitFileError, "lock",
                          fmt::format("{}; {}", InUse(lock, interface),
                                      station.wait > 0 ? "waited in vain"
                                                       : "--wait SECONDS waits for its end"));
        }
        if (!isAnnounced) {
            link.Send(FrameKind::Notice, fmt::format("{}; waiting for at most {} s",
                                                     InUse(lock, interface), station.wait));
            isAnnounced = true;
        }
        std::this_thread::sleep_for(kBetweenAttempts);
    }
    return true;
}

/// Hashes what the run reads, and replaces it with copies if that is wanted.
bool PrepareFiles(const RunOptions &options, const fs::path &library, const LineContext &context,
                  const Records *records, RunPreparation &preparation, ParentLink &link) {
    const auto &station = options.station;
    std::vector<RunFile> files = InputFiles(options.arguments, context, records);
    if (!station.privateDirectory.empty()) {
        std::string error;
        preparation.arguments =
            CopyInputs(options.arguments, station.privateDirectory, files, error);
        if (!error.empty()) {
            return Refuse(link, kExitFileError, "files", error);
        }
    } else {
        std::for_each(files.begin(), files.end(), AddDigest);
    }
    const auto companions = CompanionFiles(options.arguments, context);
    files.insert(files.end(), companions.begin(), companions.end());
    const auto installed = InstalledFiles(library);
    files.insert(files.end(), installed.begin(), installed.end());
    Json json = Json::array();
    for (const RunFile &file : files) {
        json.push_back(RunFileJson(file));
    }
    return link.Send(FrameKind::Files, json.dump());
}

/// Parses the line again: while the run waited for the device, its files may have been exchanged,
/// and what is programmed and backed up follows from the records.
bool RenewRecords(const LineContext &context, RunPreparation &preparation, ParentLink &link) {
    const ParsedLine parsed = context.parse(preparation.arguments);
    if (!parsed.accepted) {
        return Refuse(link, kExitRefused, "files",
                      "the library refuses the line with the files as they are now; nothing was "
                      "done");
    }
    preparation.records = parsed.records;
    return true;
}

bool PlanBackups(const RunOptions &options, const LineContext &context, const Records *records,
                 RunPreparation &preparation, ParentLink &link) {
    const std::string &directory = options.station.backup;
    std::string error;
    const auto banks =
        records != nullptr ? BanksToBackUp(*records, context.parse) : std::vector<std::uint32_t>();
    if (banks.empty()) {
        return Refuse(link, kExitRefused, "backup",
                      "the banks that this line programs are not known, so --backup cannot read "
                      "them; nothing was done");
    }
    if (!PrepareBackupDirectory(directory, error)) {
        return Refuse(link, kExitFileError, "backup", error);
    }
    preparation.backups = BackupRanges(banks, directory, options.station.runId);
    for (const BackupRange &range : preparation.backups) {
        if (!FitsRecord(range.file)) {
            return Refuse(link, kExitFileError, "backup",
                          fmt::format("the path {} is too long for the library; give --backup a "
                                      "directory with a shorter path",
                                      range.file.string()));
        }
    }
    return true;
}

} // namespace

std::optional<RunPreparation> PrepareRun(const RunOptions &options, const fs::path &library,
                                         const LineContext &context,
                                         const std::shared_ptr<const Records> &records,
                                         ParentLink &link) {
    const auto &station = options.station;
    RunPreparation preparation{options.arguments, std::nullopt, {}, records};
    if (!station.file.empty()) {
        preparation.lock.emplace(library.parent_path(), InterfaceOf(options.arguments));
        if (!LockDevice(options, library, *preparation.lock, link)) {
            return std::nullopt;
        }
    }
    const bool hashes = !station.file.empty() || !station.privateDirectory.empty();
    if (hashes && !PrepareFiles(options, library, context, records.get(), preparation, link)) {
        return std::nullopt;
    }
    if (hashes && records != nullptr && !RenewRecords(context, preparation, link)) {
        return std::nullopt;
    }
    if (!station.backup.empty() &&
        !PlanBackups(options, context, preparation.records.get(), preparation, link)) {
        return std::nullopt;
    }
    return preparation;
}

} // namespace ispctl
