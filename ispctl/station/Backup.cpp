#include "station/Backup.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "Utf8.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kBankBytes = SCALER_ISP_BANK_BYTES;

void AddMap(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &command, std::set<std::uint32_t> &banks) {
    const auto &map = command.stMapFw;
    const std::size_t count = std::min<std::size_t>(map.ulFwCount, SCALER_ISP_MAX_BANKS);
    banks.insert(map.ulTargetBank, map.ulTargetBank + count);
}

void AddFlag(const STRUCT_FLAG_SETTING &flag, std::set<std::uint32_t> &banks) {
    if (flag.ulFlagCount > 0) {
        banks.insert(flag.ulFlagAddr / kBankBytes);
        banks.insert((flag.ulFlagAddr + flag.ulFlagCount - 1) / kBankBytes);
    }
}

std::string NamePrefix(const std::string &runId) {
    return runId + "-bank-";
}

bool ProgramsBootFirmware(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &command) {
    return command.enumBootCodeType == SCALER_ISP_NEW_BOOT_CODE &&
           command.enumIspMode == SCALER_ISP_MODE_FACTORY && command.szBootFwPath[0] != '\0';
}

} // namespace

std::uint32_t BackupRange::Address() const {
    return firstBank * kBankBytes;
}

std::uint32_t BackupRange::Bytes() const {
    return (lastBank - firstBank + 1) * kBankBytes;
}

std::string BackupRange::Banks() const {
    return firstBank == lastBank ? fmt::format("bank {}", firstBank)
                                 : fmt::format("banks {} to {}", firstBank, lastBank);
}

std::vector<std::uint32_t>
BanksToBackUp(const Records &records,
              const std::function<ParsedLine(const std::vector<std::string> &)> &parse) {
    std::set<std::uint32_t> banks;
    AddMap(records.command, banks);
    if (records.command.enumActionType == ENUM_ACTION_ISPUSER) {
        AddFlag(records.command.stFlagSetting, banks);
    }
    if (ProgramsBootFirmware(records.command) && parse) {
        const char *path = records.command.szBootFwPath;
        const ParsedLine boot =
            parse({"--isp", "--fw", {path, ::strnlen(path, SCALER_ISP_PATH_CHARS)}});
        if (boot.accepted) {
            AddMap(boot.records->command, banks);
        }
    }
    return {banks.begin(), banks.end()};
}

std::vector<BackupRange> BackupRanges(const std::vector<std::uint32_t> &banks,
                                      const fs::path &directory, const std::string &runId) {
    std::vector<BackupRange> ranges;
    for (const std::uint32_t bank : banks) {
        if (!ranges.empty() && ranges.back().lastBank + 1 == bank) {
            ranges.back().lastBank = bank;
        } else {
            ranges.push_back({bank, bank, ""});
        }
    }
    for (BackupRange &range : ranges) {
        range.file = fs::absolute(directory) /
                     fmt::format("{}{}-{}.bin", NamePrefix(runId), range.firstBank, range.lastBank);
    }
    return ranges;
}

void RemovePartialBackups(const fs::path &directory, const std::string &runId,
                          const std::vector<std::string> &complete) {
    std::set<fs::path> kept;
    for (const std::string &backup : complete) {
        kept.insert(fs::path(Json::parse(backup)["path"].get<std::string>()).filename());
    }
    std::error_code error;
    std::vector<fs::path> partial;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
        const fs::path name = entry->path().filename();
        if (name.string().starts_with(NamePrefix(runId)) && !kept.contains(name)) {
            partial.push_back(entry->path());
        }
    }
    for (const fs::path &file : partial) {
        fs::remove(file, error);
    }
}

bool PrepareBackupDirectory(const fs::path &directory, std::string &error) {
    if (::mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST) {
        error = fmt::format("cannot make the directory for backups {}: {}", directory.string(),
                            std::strerror(errno));
        return false;
    }
    std::error_code ignored;
    if (!fs::is_directory(directory, ignored)) {
        error = fmt::format("{} is not a directory for backups; name another", directory.string());
        return false;
    }
    if (::access(directory.c_str(), W_OK | X_OK) != 0) {
        error = fmt::format("cannot write to the directory for backups {}: {}", directory.string(),
                            std::strerror(errno));
        return false;
    }
    return true;
}

std::vector<std::string> BackupLine(const BackupRange &range,
                                    const std::vector<std::string> &arguments) {
    std::vector<std::string> line{"--dumpflash",
                                  "--dumpaddr",
                                  fmt::format("0x{:X}", range.Address()),
                                  "--dumplen",
                                  fmt::format("0x{:X}", range.Bytes()),
                                  "--dumpname",
                                  range.file.string()};
    const auto device = DeviceArguments(arguments);
    line.insert(line.end(), device.begin(), device.end());
    return line;
}

std::string CheckBackup(const BackupRange &range, std::string &error) {
    RunFile file{"backup", "", range.file, {}, {}, "", {}};
    AddDigest(file);
    if (!file.digest) {
        error = "the plug-in reported success, but " + file.problem;
        return "";
    }
    if (file.digest->size != range.Bytes()) {
        error = fmt::format("the plug-in reported success, but {} has {} bytes instead of {}",
                            range.file.string(), file.digest->size, range.Bytes());
        return "";
    }
    Json record = RunFileJson(file);
    record.erase("role");
    record["address"] = range.Address();
    return record.dump();
}

} // namespace ispctl
