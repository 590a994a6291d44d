// How the time grows with the input, against the same work done by hand: each row is measured at
// several sizes, of which tools/bench.py makes an exponent.

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <getopt.h>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "ScratchFolder.h"
#include "scaler_isp/args/ArgsFwSearch.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/entry/CommandLineSplit.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace {

constexpr const char *kMemory = "/dev/shm"; // tmpfs on Linux
constexpr const char *kFirmware = "panel.bin";

using Size = std::int64_t;

std::wstring Wide(const std::string &text) {
    return {text.begin(), text.end()};
}

/// Arguments "--comm 3" in turns, without others between them.
struct Arguments {
    explicit Arguments(Size count) : words(static_cast<std::size_t>(count), "3") {
        for (std::size_t i = 0; i < words.size(); i += 2) {
            words[i] = "--comm";
        }
        words.insert(words.begin(), "tool");
        for (std::string &word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
    }
    std::vector<std::string> words;
    std::vector<char *> argv;

    Size OptionsByLibrary() {
        CpNxCmdLindParse engine;
        STRUCT_CP_LONG_CMD_UNIT units[] = {{"comm", 1, nullptr, 7}, {nullptr, 0, nullptr, 0}};
        engine.AddLongCmds(units);
        Size options = 0;
        while (engine.ParseCmdLineEx(static_cast<int>(words.size()), argv.data(), nullptr) == 7) {
            ++options;
        }
        return options;
    }

    Size OptionsByHand() {
        const option units[] = {{"comm", required_argument, nullptr, 7}, {nullptr, 0, nullptr, 0}};
        optind = 0; // glibc: reset the state of the previous scan
        Size options = 0;
        while (getopt_long(static_cast<int>(words.size()), argv.data(), "", units, nullptr) == 7) {
            ++options;
        }
        return options;
    }
};

/// A line of quoted words.
struct Quoted {
    explicit Quoted(Size count) {
        for (Size i = 0; i < count; ++i) {
            line += "\"word " + std::to_string(i) + "\" ";
        }
        line.insert(0, "tool ");
    }
    std::string line;

    Size WordsByLibrary() {
        std::vector<std::string> words;
        return ParseCommandLineParameter(words, line) != 0 ? static_cast<Size>(words.size()) : 0;
    }

    Size WordsByHand() {
        std::vector<std::string> words;
        std::string word;
        bool quoted = false;
        for (const char c : line) {
            quoted = quoted != (c == '"');
            if (c == ' ' && !quoted) {
                words.push_back(word);
                word.clear();
            } else if (c != '"') {
                word += c;
            }
        }
        return static_cast<Size>(words.size());
    }
};

struct PlainBank {
    unsigned int ulFileBank;
    std::wstring strPath;
};

/// Resolves and opens a file. RETURNS its size.
Size SizeByHand(const std::string &path, char *resolved) {
    const bool exists = realpath(path.c_str(), resolved) != nullptr;
    const int descriptor = exists ? open(resolved, O_RDONLY | O_CLOEXEC) : -1;
    const Size size = lseek(descriptor, 0, SEEK_END);
    close(descriptor);
    return size;
}

/// A file of some banks.
struct Banks {
    explicit Banks(Size count) : parser(std::make_unique<CCpIspArgsParse>()) {
        auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
        setting->enumActionType = ENUM_ACTION_ISP;
        parser->SetISPCmdSetting(*setting);
        parser->SetCurrentDir(folder.Path());
        folder.AddFile(kFirmware, static_cast<std::uintmax_t>(count) * SCALER_ISP_BANK_BYTES);
        parser->InsertCommandFwFile(0, kFirmware);
    }
    ScratchFolder folder;
    std::unique_ptr<CCpIspArgsParse> parser;

    Size MapByLibrary() {
        FwBankMap banks;
        return parser->JudgeFwMap(banks) != 0 ? static_cast<Size>(banks.size()) : 0;
    }

    Size MapByHand() {
        char resolved[PATH_MAX];
        const Size size = SizeByHand(folder.Path() + kFirmware, resolved);
        const std::wstring path = Wide(resolved);
        std::map<unsigned int, PlainBank> banks;
        for (unsigned int i = 0; i < size / SCALER_ISP_BANK_BYTES; ++i) {
            banks.emplace_hint(banks.end(), i, PlainBank{i, path});
        }
        return static_cast<Size>(banks.size());
    }
};

/// A settings file whose last key is wanted.
struct Lines {
    explicit Lines(Size count) : path(folder.Path() + "s.ini"), widePath(Wide(path)) {
        std::ofstream file(path);
        file << "[S]\n";
        for (Size i = 1; i < count; ++i) {
            file << "key" << i << "=/srv/firmware/panel.bin\n";
        }
        file << "wanted=" << count << '\n';
    }
    ScratchFolder folder{kMemory};
    std::string path;
    std::wstring widePath;

    Size ValueByLibrary() {
        return CpNxGetPrivateProfileIntW(L"S", L"wanted", 0, widePath.c_str());
    }

    Size ValueByHand() {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (line.compare(0, 7, "wanted=") == 0) {
                return std::strtol(line.c_str() + 7, nullptr, 0);
            }
        }
        return 0;
    }
};

/// A directory with one firmware file.
struct Entries {
    explicit Entries(Size count) : entries(count) {
        folder.AddFile(kFirmware, 0);
        for (Size i = 1; i < count; ++i) {
            folder.AddFile("capture-" + std::to_string(i) + ".log", 0);
        }
    }
    ScratchFolder folder{kMemory};
    Size entries;

    Size FindByLibrary() {
        std::vector<std::string> names;
        FindFile(folder.Path(), names, ".bin");
        return names.size() == 1 ? entries : 0;
    }

    Size FindByHand() {
        std::vector<std::string> names;
        DIR *listing = opendir(folder.Path().c_str());
        while (const dirent *entry = readdir(listing)) {
            const std::size_t length = std::strlen(entry->d_name);
            if (length > 4 && std::memcmp(entry->d_name + length - 4, ".bin", 4) == 0) {
                names.emplace_back(entry->d_name);
            }
        }
        closedir(listing);
        return names.size() == 1 ? entries : 0;
    }
};

/// A file of some KiB.
struct Firmware {
    explicit Firmware(Size kib) {
        folder.AddFile(kFirmware, static_cast<std::uintmax_t>(kib) * 1024);
        path = folder.Path() + kFirmware;
    }
    ScratchFolder folder;
    std::string path;

    Size KibByLibrary() {
        unsigned int count = 0;
        GetFwBankCount(Wide(path).c_str(), count);
        return static_cast<Size>(count) * SCALER_ISP_BANK_BYTES / 1024;
    }

    Size KibByHand() {
        char resolved[PATH_MAX];
        return SizeByHand(path, resolved) / 1024;
    }
};

/// \param expected  what the work returns for an input of that size
template <class Input>
void Run(benchmark::State &state, Size (Input::*work)(), Size (*expected)(Size)) {
    Input input(state.range(0));
    const FaultCounter faults(state);
    for (auto _ : state) {
        if ((input.*work)() != expected(state.range(0))) {
            state.SkipWithError("wrong result");
            return;
        }
    }
}

Size Same(Size size) {
    return size;
}
Size Half(Size size) {
    return size / 2;
}
Size OneMore(Size size) {
    return size + 1;
}

#define SCALING_PAIR(ROW, INPUT, WHAT, EXPECTED, ...)                                              \
    BENCHMARK_CAPTURE(Run, , &INPUT::WHAT##ByLibrary, EXPECTED)                                    \
        ->Name(ROW ":subject")                                                                     \
        ->ArgsProduct({{__VA_ARGS__}});                                                            \
    BENCHMARK_CAPTURE(Run, , &INPUT::WHAT##ByHand, EXPECTED)                                       \
        ->Name(ROW ":peer")                                                                        \
        ->ArgsProduct({{__VA_ARGS__}})

SCALING_PAIR("arguments", Arguments, Options, Half, 10, 100, 1000, 10000);
SCALING_PAIR("quoted", Quoted, Words, OneMore, 10, 100, 1000, 10000);
SCALING_PAIR("banks", Banks, Map, Same, 1, 8, 64, 512);
SCALING_PAIR("lines", Lines, Value, Same, 10, 100, 1000, 10000, 100000);
SCALING_PAIR("entries", Entries, Find, Same, 10, 100, 1000, 10000, 100000);
SCALING_PAIR("file_size", Firmware, Kib, Same, 64, 1024, 16384, 1048576);

} // namespace
