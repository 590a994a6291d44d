// Finding the one firmware file among 10,000 entries, against a plain loop over the directory.

#include <cstring>
#include <dirent.h>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "ScratchFolder.h"
#include "scaler_isp/args/ArgsFwSearch.h"

namespace {

constexpr int kEntries = 10000;
constexpr const char *kFirmware = "panel-v2.13.bin";
constexpr const char *kEnding = ".bin";

const std::string &FolderPath() {
    static const auto folder = [] {
        auto made = std::make_unique<ScratchFolder>();
        made->AddFile(kFirmware, 0);
        for (int i = 1; i < kEntries; ++i) {
            made->AddFile("capture-" + std::to_string(i) + ".log", 0);
        }
        return made;
    }();
    return folder->Path();
}

std::string FindWithLibrary(const std::string &folder) {
    std::vector<std::string> names;
    FindFile(folder, names, kEnding);
    return names.size() == 1 ? names.front() : "";
}

std::string FindWithReaddir(const std::string &folder) {
    std::string found;
    DIR *listing = opendir(folder.c_str());
    while (const dirent *entry = readdir(listing)) {
        const std::size_t length = std::strlen(entry->d_name);
        if (length > 4 && std::memcmp(entry->d_name + length - 4, kEnding, 4) == 0) {
            found = entry->d_name;
        }
    }
    closedir(listing);
    return found;
}

template <class Find> void Run(benchmark::State &state, Find find) {
    const std::string &folder = FolderPath();
    if (find(folder) != kFirmware) {
        state.SkipWithError("not found");
        return;
    }
    const FaultCounter faults(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(find(folder));
    }
}

BENCHMARK_CAPTURE(Run, , FindWithLibrary)->Name("search:subject");
BENCHMARK_CAPTURE(Run, , FindWithReaddir)->Name("search:peer");

} // namespace
