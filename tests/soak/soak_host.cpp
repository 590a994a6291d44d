// Makes many calls in one process. Each line of LINES is a call: a digit that selects what the
// plug-ins answer, and the command line.
//
//   soak_host one LINES NUMBER          one call; prints its outcome
//   soak_host many LINES OUTCOMES N S   N calls in the order that seed S gives; each outcome must
//   be
//                                       that of OUTCOMES, and memory and descriptors must stay flat
//   soak_host write FILE KEY N          writes the key N times, each time with another value

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

#include "modules/ModuleCalls.h"
#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace {

constexpr int kAnswers[] = {0, 6, 0x1234};
// The allocator keeps some, but what is in use may not grow.
constexpr std::size_t kAllowedGrowth = 64 * 1024;
constexpr long kAllowedResidentPages = 512;

std::uint64_t Hash(std::uint64_t hash, const void *begin, std::size_t size) {
    const auto *bytes = static_cast<const unsigned char *>(begin);
    for (std::size_t i = 0; i < size; ++i) {
        hash = (hash ^ bytes[i]) * 1099511628211ULL;
    }
    return hash;
}

/// What a plug-in gets, of the record only what is meaningful and differs from line to line.
std::uint64_t HashOf(const ModuleCall &call, std::uint64_t hash) {
    hash = Hash(hash, call.name.data(), call.name.size());
    if (call.name == "SetUIFunction" || call.name == "SetIDev" || call.name == "SetCommInterface") {
        return hash;
    }
    if (call.name == "SignFwExport" || call.name == "VerifySignatureExport") {
        return Hash(hash, call.first, sizeof(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS));
    }
    const auto &setting = *static_cast<const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *>(call.first);
    hash = Hash(hash, &setting.enumActionType, sizeof setting.enumActionType);
    hash = Hash(hash, &setting.stMapFw.ulFwCount, sizeof setting.stMapFw.ulFwCount);
    for (std::uint32_t i = 0; i < setting.stMapFw.ulFwCount; ++i) {
        hash = Hash(hash, &setting.stMapFw.ulTargetBank[i], sizeof(std::uint32_t));
        hash = Hash(hash, setting.stMapFw.stFwBank[i].wszFwPath,
                    sizeof setting.stMapFw.stFwBank[i].wszFwPath);
    }
    hash = Hash(hash, &setting.stFlagSetting, sizeof setting.stFlagSetting);
    hash = Hash(hash, &setting.stDumpFlash, sizeof setting.stDumpFlash);
    return Hash(hash, setting.wszSettingFile, sizeof setting.wszSettingFile);
}

/// One call, as text: the result, how many calls of plug-ins, and their hash.
std::string Outcome(const std::string &line) {
    std::uint64_t hash = 14695981039346656037ULL;
    std::size_t count = 0;
    int result = 0;
    {
        ModuleCalls calls;
        const int answer = kAnswers[static_cast<std::size_t>(line[0] - '0') % 3];
        calls.answer = [&](const ModuleCall &call) {
            hash = HashOf(call, hash);
            ++count;
            return answer;
        };
        const std::wstring wide = CCpTransform().ConvertUTF8StringToUnicode(line.substr(1));
        result = OperateScaler(wide.c_str(), nullptr, nullptr, nullptr);
    }
    char text[96];
    std::snprintf(text, sizeof text, "%d %zu %llx", result, count,
                  static_cast<unsigned long long>(hash));
    return text;
}

std::vector<std::string> LinesOf(const char *path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

struct Usage {
    std::size_t heap = 0;
    long resident = 0;
    int descriptors = 0;
};

/// A line with an odd number of quotes leaves its parser until the next call.
Usage Measure() {
    Outcome("0tool");
    Usage usage;
    std::ifstream("/proc/self/statm") >> usage.resident >> usage.resident;
    DIR *listing = ::opendir("/proc/self/fd");
    while (::readdir(listing) != nullptr) {
        ++usage.descriptors;
    }
    ::closedir(listing);
    usage.heap = ::mallinfo2().uordblks;
    return usage;
}

int Many(const std::vector<std::string> &lines, const std::vector<std::string> &outcomes,
         unsigned long count, unsigned int seed, std::FILE *report) {
    std::mt19937 random(seed);
    for (int time = 0; time < 2; ++time) { // until everything is loaded that stays
        for (const std::string &line : lines) {
            Outcome(line);
        }
    }
    const Usage first = Measure();
    for (unsigned long i = 0; i < count; ++i) {
        const std::size_t line = random() % lines.size();
        const std::string outcome = Outcome(lines[line]);
        if (outcome != outcomes[line]) {
            std::fprintf(report, "call %lu: %s\n  alone: %s\n  here:  %s\n", i, lines[line].c_str(),
                         outcomes[line].c_str(), outcome.c_str());
            return 1;
        }
    }
    const Usage last = Measure();
    std::fprintf(report,
                 "%lu calls, heap %zu -> %zu bytes, resident %ld -> %ld pages, descriptors %d -> "
                 "%d\n",
                 count, first.heap, last.heap, first.resident, last.resident, first.descriptors,
                 last.descriptors);
    return last.heap > first.heap + kAllowedGrowth || last.descriptors != first.descriptors ||
           last.resident > first.resident + kAllowedResidentPages;
}

int Write(const char *file, const char *key, unsigned long count) {
    for (unsigned long i = 1; i <= count; ++i) {
        if (CpNxWritePrivateProfileStringA("Soak", key, std::to_string(i).c_str(), file) != 1) {
            return 1;
        }
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "write" && argc == 5) {
        return Write(argv[2], argv[3], std::strtoul(argv[4], nullptr, 10));
    }
    // What the library prints is of no interest here.
    std::FILE *report = ::fdopen(::dup(STDOUT_FILENO), "w");
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    int status = 2;
    if (mode == "one" && argc == 4) {
        std::fprintf(report, "%s\n",
                     Outcome(LinesOf(argv[2]).at(std::strtoul(argv[3], nullptr, 10))).c_str());
        status = 0;
    } else if (mode == "many" && argc == 6) {
        status = Many(LinesOf(argv[2]), LinesOf(argv[3]), std::strtoul(argv[4], nullptr, 10),
                      static_cast<unsigned int>(std::strtoul(argv[5], nullptr, 10)), report);
    }
    return std::fclose(report) == 0 ? status : 1;
}
