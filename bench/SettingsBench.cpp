// Saving a full firmware map against a program that reads the old file, formats the same lines and
// replaces it by a temporary file; odd files against an ordinary one; reading and writing one key
// against a scan of the lines.

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
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

constexpr const char *kDisk = "";           // the directory for temporary files
constexpr const char *kMemory = "/dev/shm"; // tmpfs on Linux

constexpr const char *kSection = "[ISP_Fw]\n";

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

/// A record whose map has this many entries, each with this path.
std::unique_ptr<Setting> MapOf(const std::string &ini, unsigned int entries,
                               const std::wstring &path) {
    auto setting = std::make_unique<Setting>();
    Wide(ini).copy(setting->wszSettingFile, SCALER_ISP_PATH_CHARS);
    setting->stMapFw.ulFwCount = entries;
    for (unsigned int i = 0; i < entries; ++i) {
        setting->stMapFw.ulTargetBank[i] = i;
        path.copy(setting->stMapFw.stFwBank[i].wszFwPath, SCALER_ISP_PATH_CHARS);
    }
    return setting;
}

std::unique_ptr<Setting> OrdinaryMap(const std::string &ini, unsigned int entries) {
    return MapOf(ini, entries, std::wstring(kPathCharacters, L'p'));
}

/// Replaces a file as the library must: through a temporary file.
bool Replace(const std::string &ini, const std::string &bytes) {
    const std::string temporary = ini + ".tmp";
    std::FILE *file = std::fopen(temporary.c_str(), "wb");
    if (file == nullptr) {
        return false;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written && std::rename(temporary.c_str(), ini.c_str()) == 0;
}

void SaveSubject(benchmark::State &state, const char *place, unsigned int entries) {
    const ScratchFolder folder(place);
    const std::string ini = folder.Path() + "s.ini";
    const auto setting = OrdinaryMap(ini, entries);
    setting->SaveSetting();
    const FaultCounter faults(state);
    for (auto _ : state) {
        setting->SaveSetting();
    }
    if (ReadAll(ini).find("fw" + std::to_string(entries - 1) + "_Path=ppp") == std::string::npos) {
        state.SkipWithError("wrong file");
    }
}

void SavePeer(benchmark::State &state, const char *place) {
    const ScratchFolder folder(place);
    const std::string ini = folder.Path() + "s.ini";
    const auto setting = OrdinaryMap(ini, SCALER_ISP_MAX_BANKS);
    setting->SaveSetting();
    const std::string expected = ReadAll(ini);
    const std::string path(kPathCharacters, 'p');
    const FaultCounter faults(state);
    for (auto _ : state) {
        const std::string before = ReadAll(ini);
        std::string bytes = kSection;
        char line[SCALER_ISP_PATH_CHARS];
        const auto add = [&](int size) { bytes.append(line, static_cast<std::size_t>(size)); };
        add(std::snprintf(line, sizeof line, "fwFileCount=%u\n", setting->stMapFw.ulFwCount));
        for (unsigned int i = 0; i < setting->stMapFw.ulFwCount; ++i) {
            add(std::snprintf(line, sizeof line, "fw%u_TargetBank=%u\n", i, i));
            add(std::snprintf(line, sizeof line, "fw%u_FileBank=%u\n", i, i));
            add(std::snprintf(line, sizeof line, "fw%u_Path=%s\n", i, path.c_str()));
        }
        if (before != expected || bytes != expected || !Replace(ini, bytes)) {
            state.SkipWithError("not written");
            return;
        }
    }
}

/// Saves into a file that is created again before each iteration, so that it keeps its unusual
/// form.
void SaveOdd(benchmark::State &state, const char *front, int copies, const std::wstring &path) {
    const ScratchFolder folder(kMemory);
    const std::string ini = folder.Path() + "s.ini";
    OrdinaryMap(ini, SCALER_ISP_MAX_BANKS)->SaveSetting();
    std::string before = front;
    for (int i = 0; i < copies; ++i) {
        before += ReadAll(ini) + "\n";
    }
    const auto setting = MapOf(ini, SCALER_ISP_MAX_BANKS, path);
    const FaultCounter faults(state);
    for (auto _ : state) {
        if (!Replace(ini, before)) {
            state.SkipWithError("not written");
            return;
        }
        setting->SaveSetting();
    }
    if (ReadAll(ini).find("fw511_Path=" + std::string(1, static_cast<char>(path.front()))) ==
        std::string::npos) {
        state.SkipWithError("wrong file");
    }
}

std::string KeyOfLine(unsigned int line) {
    return "fw" + std::to_string(line) + "_Path";
}

std::string ValueOfLine(unsigned int line) {
    return "/srv/firmware/panel-" + std::to_string(line) + ".bin";
}

std::string WriteLines(const ScratchFolder &folder) {
    std::ofstream file(folder.Path() + "s.ini");
    file << kSection;
    for (unsigned int i = 0; i < kLines; ++i) {
        file << KeyOfLine(i) << '=' << ValueOfLine(i) << '\n';
    }
    return folder.Path() + "s.ini";
}

void ReadSubject(benchmark::State &state, unsigned int line) {
    const ScratchFolder folder;
    const std::wstring path = Wide(WriteLines(folder));
    const std::wstring key = Wide(KeyOfLine(line));
    const std::wstring expected = Wide(ValueOfLine(line));
    const FaultCounter faults(state);
    for (auto _ : state) {
        wchar_t value[260] = {};
        CpNxGetPrivateProfileStringW(L"ISP_Fw", key.c_str(), L"", value, 260, path.c_str());
        if (value != expected) {
            state.SkipWithError("wrong value");
            return;
        }
    }
}

void ReadPeer(benchmark::State &state, unsigned int line) {
    const ScratchFolder folder;
    const std::string path = WriteLines(folder);
    const std::string wanted = KeyOfLine(line) + "=";
    const std::string expected = ValueOfLine(line);
    const FaultCounter faults(state);
    for (auto _ : state) {
        std::ifstream file(path);
        std::string found;
        for (std::string text; found.empty() && std::getline(file, text);) {
            if (text.compare(0, wanted.size(), wanted) == 0) {
                found = text.substr(wanted.size());
            }
        }
        if (found != expected) {
            state.SkipWithError("wrong value");
            return;
        }
    }
}

void WriteSubject(benchmark::State &state) {
    const ScratchFolder folder(kMemory);
    const std::wstring path = Wide(WriteLines(folder));
    const FaultCounter faults(state);
    for (auto _ : state) {
        if (CpNxWritePrivateProfileStringW(L"ISP_Fw", L"fw1499_Path", L"/x", path.c_str()) != 1) {
            state.SkipWithError("not written");
            return;
        }
    }
}

void WritePeer(benchmark::State &state) {
    const ScratchFolder folder(kMemory);
    const std::string path = WriteLines(folder);
    const FaultCounter faults(state);
    for (auto _ : state) {
        std::ifstream file(path);
        std::string line;
        std::string bytes;
        while (std::getline(file, line)) {
            const bool found = line.compare(0, 12, "fw1499_Path=") == 0;
            (bytes += found ? "fw1499_Path=/x" : line) += '\n';
        }
        if (!Replace(path, bytes)) {
            state.SkipWithError("not written");
            return;
        }
    }
}

const std::wstring kOrdinaryPath(kPathCharacters, L'p');
const std::string kOverlongLine = std::string(2000, 'o') + "\n";
BENCHMARK_CAPTURE(SaveSubject, disk, kDisk, 512)->Name("save_on_disk:subject");
BENCHMARK_CAPTURE(SavePeer, disk, kDisk)->Name("save_on_disk:peer");
BENCHMARK_CAPTURE(SaveSubject, memory, kMemory, 512)->Name("save_in_memory:subject");
BENCHMARK_CAPTURE(SavePeer, memory, kMemory)->Name("save_in_memory:peer");
BENCHMARK_CAPTURE(SaveSubject, quarter, kMemory, 128)->Name("save_128");
BENCHMARK_CAPTURE(SaveOdd, twice, "", 2, kOrdinaryPath)->Name("save_odd_twice");
BENCHMARK_CAPTURE(SaveOdd, unreadable, "; \xE4\n", 1, std::wstring(kPathCharacters, L'\x00E4'))
    ->Name("save_odd_unreadable");
BENCHMARK_CAPTURE(SaveOdd, newline, "", 1, kOrdinaryPath + L"\nq")->Name("save_odd_newline");
BENCHMARK_CAPTURE(SaveOdd, overlong, kOverlongLine.c_str(), 1, kOrdinaryPath)
    ->Name("save_odd_overlong");
BENCHMARK_CAPTURE(ReadSubject, last, kLines - 1)->Name("read_last:subject");
BENCHMARK_CAPTURE(ReadPeer, last, kLines - 1)->Name("read_last:peer");
BENCHMARK_CAPTURE(ReadSubject, second, 1)->Name("read_second:subject");
BENCHMARK_CAPTURE(ReadPeer, second, 1)->Name("read_second:peer");
BENCHMARK(WriteSubject)->Name("write_key:subject");
BENCHMARK(WritePeer)->Name("write_key:peer");

} // namespace
