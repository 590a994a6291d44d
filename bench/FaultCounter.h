#ifndef SCALER_ISP_BENCH_FAULT_COUNTER_H
#define SCALER_ISP_BENCH_FAULT_COUNTER_H

#include <sys/resource.h>

#include <benchmark/benchmark.h>

/// Reports the minor page faults of an iteration as the counter "faults". Make one directly before
/// the measured loop.
class FaultCounter {
  public:
    explicit FaultCounter(benchmark::State &state) : m_state(state), m_before(MinorFaults()) {}
    ~FaultCounter() {
        m_state.counters["faults"] = static_cast<double>(MinorFaults() - m_before) /
                                     static_cast<double>(m_state.max_iterations);
    }
    FaultCounter(const FaultCounter &) = delete;
    FaultCounter &operator=(const FaultCounter &) = delete;

  private:
    static long MinorFaults() {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_minflt;
    }

    benchmark::State &m_state;
    long m_before;
};

#endif
