// The first call of a process, which Google Benchmark cannot repeat: one run, one measurement.
// Usage: bench_first_call subject|peer. Writes the time and the minor page faults to standard
// error.

#include <chrono>
#include <cstdio>
#include <cstring>
#include <sys/resource.h>

#include "CallPair.h"

namespace {

long MinorFaults() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

double ProcessorNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2 || (std::strcmp(argv[1], "subject") != 0 && std::strcmp(argv[1], "peer") != 0)) {
        std::fprintf(stderr, "usage: bench_first_call subject|peer\n");
        return 2;
    }
    void (*call)() = std::strcmp(argv[1], "subject") == 0 ? CallLibrary : PeerOfTheFirstCall;
    OpenStagedLibrary(); // for both, so that the same libraries are mapped

    const long faultsBefore = MinorFaults();
    const double start = ProcessorNanoseconds();
    call();
    const double elapsed = ProcessorNanoseconds() - start;
    const long faults = MinorFaults() - faultsBefore;

    std::fprintf(stderr, "%.0f %ld\n", elapsed, faults);
    return 0;
}
