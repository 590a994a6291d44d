// A complete call in a process that has made many, against the same work done by hand.

#include <benchmark/benchmark.h>

#include "CallPair.h"
#include "FaultCounter.h"

namespace {

void Run(benchmark::State &state, void (*call)()) {
    static const bool opened = [] {
        OpenStagedLibrary();
        return true;
    }();
    benchmark::DoNotOptimize(opened);
    for (int i = 0; i < 10; ++i) {
        call();
    }
    const FaultCounter faults(state);
    for (auto _ : state) {
        call();
    }
}

BENCHMARK_CAPTURE(Run, , CallLibrary)->Name("call:subject");
BENCHMARK_CAPTURE(Run, , CallPeer)->Name("call:peer");
BENCHMARK_CAPTURE(Run, , IspLibrary)->Name("isp:subject");
BENCHMARK_CAPTURE(Run, , IspPeer)->Name("isp:peer");

} // namespace
