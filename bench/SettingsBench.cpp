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

/// A record whose map has 512 entries, saved once.
std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> FullSetting(const std::string &ini) {
    auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    Wide(ini).copy(setting->wszSettingFile, SCALER_ISP_PATH_CHARS);
    setting->stMapFw.ulFwCount = SCALER_ISP_MAX_BANKS;
    for (unsigned int i = 0; i < SCALER_ISP_MAX_BANKS; ++i) {
        setting->stMapFw.ulTargetBank[i] = i;
        std::wstring(kPathCharacters, L'p')
            .copy(setting->stMapFw.stFwBank[i].wszFwPath, kPathCharacters);
    }
    setting->SaveSetting();
    return setting;
}

void SaveSubject(benchmark::State &state) {
    const ScratchFolder folder;
    const std::string ini = folder.Path() + "s.ini";
    const auto setting = FullSetting(ini);
    for (auto _ : state) {
        setting->SaveSetting();
    }
    if (ReadAll(ini).find("fw511_Path=ppp") == std::string::npos) {
        state.SkipWithError("wrong file");
    }
}

void SavePeer(benchmark::State &state) {
    const ScratchFolder folder;
    const std::string ini = folder.Path() + "s.ini";
    FullSetting(ini);
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

BENCHMARK(SaveSubject)->Name("save_setting:subject");
BENCHMARK(SavePeer)->Name("save_setting:peer");
BENCHMARK(ReadSubject)->Name("read_key:subject");
BENCHMARK(ReadPeer)->Name("read_key:peer");

} // namespace
