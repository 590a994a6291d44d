// Expanding ten files into 64 to 512 banks. The cost must be linear in the number of banks, and a
// path is converted once per file, however many banks the file has.

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "ScratchFolder.h"
#include "scaler_isp/args/CCpIspArgsParse.h"

namespace {

constexpr unsigned int kFiles = 10;
constexpr std::uintmax_t kBankBytes = 65536;

unsigned int g_iconvOpened = 0;

/// Banks of one of the files. Start banks end at 255, so the last file has all remaining banks.
unsigned int BanksOfFile(unsigned int file, unsigned int banks) {
    const unsigned int each = banks / kFiles < 28 ? banks / kFiles : 28;
    return file + 1 < kFiles ? each : banks - each * (kFiles - 1);
}

class Setup {
  public:
    explicit Setup(unsigned int banks) : m_parser(std::make_unique<CCpIspArgsParse>()) {
        auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
        setting->enumActionType = ENUM_ACTION_ISP;
        m_parser->SetISPCmdSetting(*setting);
        m_parser->SetCurrentDir(m_folder.Path());
        unsigned int start = 0;
        for (unsigned int file = 0; file < kFiles; ++file) {
            const std::string name = "part" + std::to_string(file) + ".bin";
            m_folder.AddFile(name, BanksOfFile(file, banks) * kBankBytes);
            m_parser->InsertCommandFwFile(file, name.c_str());
            m_parser->InsertCommandStartBank(file, std::to_string(start));
            start += BanksOfFile(file, banks);
        }
    }

    std::size_t Expand() {
        FwBankMap banks;
        return m_parser->JudgeFwMap(banks) != 0 ? banks.size() : 0;
    }

  private:
    ScratchFolder m_folder;
    std::unique_ptr<CCpIspArgsParse> m_parser;
};

/// A file of 32 MiB, the largest that a map can hold.
class OneFile {
  public:
    OneFile() : m_parser(std::make_unique<CCpIspArgsParse>()) {
        auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
        setting->enumActionType = ENUM_ACTION_ISP;
        m_parser->SetISPCmdSetting(*setting);
        m_parser->SetCurrentDir(m_folder.Path());
        m_folder.AddFile(kName, SCALER_ISP_MAX_BANKS * kBankBytes);
        m_parser->InsertCommandFwFile(0, kName);
    }

    std::string Path() const {
        return m_folder.Path() + kName;
    }

    CCpIspArgsParse &Parser() {
        return *m_parser;
    }

  private:
    static constexpr const char *kName = "panel.bin";
    ScratchFolder m_folder;
    std::unique_ptr<CCpIspArgsParse> m_parser;
};

void MapSubject(benchmark::State &state) {
    OneFile file;
    const FaultCounter faults(state);
    for (auto _ : state) {
        FwBankMap banks;
        if (file.Parser().JudgeFwMap(banks) == 0 || banks.size() != SCALER_ISP_MAX_BANKS ||
            banks.rbegin()->second.ulFileBank != SCALER_ISP_MAX_BANKS - 1) {
            state.SkipWithError("not all banks are there");
            return;
        }
    }
}

struct PlainBank {
    unsigned int ulFileBank;
    std::wstring strPath;
};

void MapPeer(benchmark::State &state) {
    const OneFile file;
    const std::string given = file.Path();
    const FaultCounter faults(state);
    for (auto _ : state) {
        char resolved[PATH_MAX];
        const bool exists = realpath(given.c_str(), resolved) != nullptr;
        const int descriptor = exists ? open(resolved, O_RDONLY | O_CLOEXEC) : -1;
        const off_t size = lseek(descriptor, 0, SEEK_END);
        close(descriptor);
        const std::wstring path(resolved, resolved + std::strlen(resolved));
        std::map<unsigned int, PlainBank> banks;
        for (unsigned int i = 0; i < size / static_cast<off_t>(kBankBytes); ++i) {
            banks.emplace_hint(banks.end(), i, PlainBank{i, path});
        }
        if (banks.size() != SCALER_ISP_MAX_BANKS) {
            state.SkipWithError("not all banks are there");
            return;
        }
    }
}

void Run(benchmark::State &state, unsigned int banks) {
    Setup setup(banks);
    g_iconvOpened = 0;
    if (setup.Expand() != banks) {
        state.SkipWithError("not all banks are there");
        return;
    }
    state.counters["conversions"] = g_iconvOpened;
    const FaultCounter faults(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(setup.Expand());
    }
}

BENCHMARK(MapSubject)->Name("bank_map:subject");
BENCHMARK(MapPeer)->Name("bank_map:peer");
BENCHMARK_CAPTURE(Run, , 64U)->Name("bank_map_64");
BENCHMARK_CAPTURE(Run, , 128U)->Name("bank_map_128");
BENCHMARK_CAPTURE(Run, , 256U)->Name("bank_map_256");
BENCHMARK_CAPTURE(Run, , 512U)->Name("bank_map_512");

} // namespace

// Replaces the C library's function, to count the conversions.
extern "C" iconv_t iconv_open(const char *to, const char *from) {
    static const auto real =
        reinterpret_cast<iconv_t (*)(const char *, const char *)>(dlsym(RTLD_NEXT, "iconv_open"));
    ++g_iconvOpened;
    return real(to, from);
}
