// A complete call in a process that has made many, against the minimum cost of such a call.

#include <sys/resource.h>

#include <benchmark/benchmark.h>

#include "CallPair.h"

namespace {

double MinorFaults() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_minflt);
}

void Run(benchmark::State &state, void (*call)()) {
    static const bool opened = [] {
        OpenStagedLibrary();
        return true;
    }();
    benchmark::DoNotOptimize(opened);
    for (int i = 0; i < 10; ++i) {
        call();
    }
    const double before = MinorFaults();
    for (auto _ : state) {
        call();
    }
    state.counters["faults"] = (MinorFaults() - before) / static_cast<double>(state.iterations());
}

BENCHMARK_CAPTURE(Run, , CallLibrary)->Name("call:subject");
BENCHMARK_CAPTURE(Run, , CallFloor)->Name("call:peer");

} // namespace
