// Saving a full firmware map against one write of the same bytes, and reading one key against a
// scan of the lines.

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "ScratchFolder.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace {

constexpr std::size_t kPathCharacters = 120;
constexpr unsigned int kLines = 1500;

std::wstring Wide(const std::string &text) {
    return {text.begin(), text.end()};
}

std::string ReadAll(const std::string &path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

constexpr const char *kDisk = "";           // the place for temporary files
constexpr const char *kMemory = "/dev/shm"; // tmpfs on Linux

/// A record whose map has this many entries, saved once.
std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> Saved(const std::string &ini,
                                                             unsigned int entries) {
    auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    Wide(ini).copy(setting->wszSettingFile, SCALER_ISP_PATH_CHARS);
    setting->stMapFw.ulFwCount = entries;
    for (unsigned int i = 0; i < entries; ++i) {
        setting->stMapFw.ulTargetBank[i] = i;
        std::wstring(kPathCharacters, L'p')
            .copy(setting->stMapFw.stFwBank[i].wszFwPath, kPathCharacters);
    }
    setting->SaveSetting();
    return setting;
}

void SaveSubject(benchmark::State &state, const char *place, unsigned int entries) {
    const ScratchFolder folder(place);
    const std::string ini = folder.Path() + "s.ini";
    const auto setting = Saved(ini, entries);
    for (auto _ : state) {
        setting->SaveSetting();
    }
    if (ReadAll(ini).find("fw" + std::to_string(entries - 1) + "_Path=ppp") == std::string::npos) {
        state.SkipWithError("wrong file");
    }
}

/// One open, write and close of the bytes that the library writes.
void SavePeer(benchmark::State &state, const char *place) {
    const ScratchFolder folder(place);
    const std::string ini = folder.Path() + "s.ini";
    Saved(ini, SCALER_ISP_MAX_BANKS);
    const std::string bytes = ReadAll(ini);
    for (auto _ : state) {
        std::FILE *file = std::fopen(ini.c_str(), "wb");
        const bool written =
            file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        if (!written || std::fclose(file) != 0) {
            state.SkipWithError("not written");
            return;
        }
    }
}

std::string WriteLines(const ScratchFolder &folder) {
    std::ofstream file(folder.Path() + "s.ini");
    file << "[ISP_Fw]\n";
    for (unsigned int i = 0; i < kLines; ++i) {
        file << "fw" << i << "_Path=/srv/firmware/panel-" << i << ".bin\n";
    }
    return folder.Path() + "s.ini";
}

void ReadSubject(benchmark::State &state) {
    const ScratchFolder folder;
    const std::wstring path = Wide(WriteLines(folder));
    for (auto _ : state) {
        wchar_t value[260] = {};
        if (CpNxGetPrivateProfileStringW(L"ISP_Fw", L"fw1499_Path", L"", value, 260,
                                         path.c_str()) != 28) {
            state.SkipWithError("wrong value");
            return;
        }
    }
}

void ReadPeer(benchmark::State &state) {
    const ScratchFolder folder;
    const std::string path = WriteLines(folder);
    for (auto _ : state) {
        std::ifstream file(path);
        std::string line;
        std::string found;
        while (std::getline(file, line)) {
            if (line.compare(0, 12, "fw1499_Path=") == 0) {
                found = line.substr(12);
            }
        }
        if (found.size() != 28) {
            state.SkipWithError("wrong value");
            return;
        }
    }
}

BENCHMARK_CAPTURE(SaveSubject, disk, kDisk, 512)->Name("save_on_disk:subject");
BENCHMARK_CAPTURE(SavePeer, disk, kDisk)->Name("save_on_disk:peer");
BENCHMARK_CAPTURE(SaveSubject, memory, kMemory, 512)->Name("save_in_memory:subject");
BENCHMARK_CAPTURE(SavePeer, memory, kMemory)->Name("save_in_memory:peer");
BENCHMARK_CAPTURE(SaveSubject, quarter, kMemory, 128)->Name("save_128");
BENCHMARK(ReadSubject)->Name("read_key:subject");
BENCHMARK(ReadPeer)->Name("read_key:peer");

} // namespace
