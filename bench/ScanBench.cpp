// Scanning a command line with all options of the library, against getopt_long with an equal table.
// Both include the set-up of the table and the copy of argv, which both scanners reorder.

#include <algorithm>
#include <array>
#include <getopt.h>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"

namespace {

std::vector<std::string> EightArguments() {
    return {"tool", "--isp", "--fw", "panel.bin", "--bank", "0x10", "--comm", "3", "--comparever"};
}

std::vector<std::string> FortyArguments() {
    std::vector<std::string> words{"tool", "--isp", "--comm", "3", "--comparever"};
    for (int entry = 1; entry <= 9; ++entry) {
        const std::string number = std::to_string(entry);
        const std::string bank = std::to_string(16 * entry);
        words.insert(words.end(),
                     {"--fw" + number, "part" + number + ".bin", "--bank" + number, bank});
    }
    return words;
}

/// The arguments of a command line and the vector that a scan may reorder.
class Line {
  public:
    explicit Line(std::vector<std::string> words) : m_words(std::move(words)) {
        for (std::string &word : m_words) {
            m_original.push_back(word.data());
        }
        m_original.push_back(nullptr);
        m_argv = m_original;
    }

    int Argc() const {
        return static_cast<int>(m_words.size());
    }

    char **FreshArgv() {
        std::copy(m_original.begin(), m_original.end(), m_argv.begin());
        return m_argv.data();
    }

  private:
    std::vector<std::string> m_words;
    std::vector<char *> m_original;
    std::vector<char *> m_argv;
};

template <class Unit> Unit UnitOf(const OptionRow &row, std::array<int, kOptionGroups> &flags) {
    int *flag = row.enumGroup == OptionGroup::None
                    ? nullptr
                    : &flags[static_cast<std::size_t>(row.enumGroup)];
    return {row.pszName, row.bTakesValue ? 1 : 0, flag, row.nVal};
}

template <class Unit>
std::array<Unit, kOptionCount + 1> Units(std::array<int, kOptionGroups> &flags) {
    std::array<Unit, kOptionCount + 1> units{};
    std::transform(OptionTable().begin(), OptionTable().end(), units.begin(),
                   [&](const OptionRow &row) { return UnitOf<Unit>(row, flags); });
    return units;
}

int ScanWithEngine(Line &line, std::array<int, kOptionGroups> &flags) {
    CpNxCmdLindParse engine;
    engine.AddLongCmds(Units<STRUCT_CP_LONG_CMD_UNIT>(flags).data());
    char **argv = line.FreshArgv();
    int sum = 0;
    for (int value = 0; (value = engine.ParseCmdLineEx(line.Argc(), argv, nullptr)) != -1;) {
        benchmark::DoNotOptimize(engine.GetCmdArg());
        sum += value;
    }
    return sum;
}

int ScanWithGetopt(Line &line, std::array<int, kOptionGroups> &flags) {
    const auto units = Units<option>(flags);
    char **argv = line.FreshArgv();
    optind = 0; // glibc: reset the state of the previous scan
    int sum = 0;
    for (int value = 0;
         (value = getopt_long(line.Argc(), argv, "", units.data(), nullptr)) != -1;) {
        benchmark::DoNotOptimize(optarg);
        sum += value;
    }
    return sum;
}

template <class Scan> void Run(benchmark::State &state, std::vector<std::string> words, Scan scan) {
    Line line(std::move(words));
    std::array<int, kOptionGroups> flags{};
    if (ScanWithEngine(line, flags) != ScanWithGetopt(line, flags)) {
        state.SkipWithError("the scanners disagree");
        return;
    }
    const FaultCounter faults(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(scan(line, flags));
    }
}

BENCHMARK_CAPTURE(Run, scan_8 : subject, EightArguments(), ScanWithEngine)->Name("scan_8:subject");
BENCHMARK_CAPTURE(Run, scan_8 : peer, EightArguments(), ScanWithGetopt)->Name("scan_8:peer");
BENCHMARK_CAPTURE(Run, scan_40
                  : subject, FortyArguments(), ScanWithEngine)
    ->Name("scan_40:subject");
BENCHMARK_CAPTURE(Run, scan_40 : peer, FortyArguments(), ScanWithGetopt)->Name("scan_40:peer");

} // namespace
