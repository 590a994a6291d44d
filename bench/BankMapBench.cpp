// Expanding ten files into 64 to 512 banks. The cost must be linear in the number of banks, and a
// path is converted once per file, however many banks the file has.

#include <cstdint>
#include <dlfcn.h>
#include <iconv.h>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

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

void Run(benchmark::State &state, unsigned int banks) {
    Setup setup(banks);
    g_iconvOpened = 0;
    if (setup.Expand() != banks) {
        state.SkipWithError("not all banks are there");
        return;
    }
    state.counters["conversions"] = g_iconvOpened;
    for (auto _ : state) {
        benchmark::DoNotOptimize(setup.Expand());
    }
}

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
