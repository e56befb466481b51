// SPDX-License-Identifier: MIT
// Measured times by name, one per round.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench {

/// Nanoseconds per operation, or a plain count, of each round.
using Samples = std::map<std::string, std::vector<double>>;

/// Takes the results of Google Benchmark into Samples: CPU time, or the benchmark's own time where
/// it keeps one.
class Collector : public benchmark::BenchmarkReporter {
public:
    explicit Collector(Samples &samples)
        : m_samples(samples)
    {
    }

    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;

private:
    Samples &m_samples;
};

/// Registers a measurement of the CPU time of this thread.
void measure(const std::string &name, int iterations, std::function<void(benchmark::State &)> body);

/// As measure, of all threads of this process.
void measureProcess(const std::string &name, int iterations,
                    std::function<void(benchmark::State &)> body);

/// Registers a measurement with untimed work in each iteration: `prepare` gives the operation that
/// is timed, and the time is divided by `operations`.
void measureSteps(const std::string &name, int iterations, double operations,
                  std::function<void()> prepare, std::function<void()> operation);

/// Median; 0 for none.
double median(std::vector<double> values);

// Registration of each group of measurements.
void addCycleBenchmarks();
void addDataBenchmarks();
void addMergeBenchmarks();
void addWriteBenchmarks();
void addLoadBenchmarks();
void addPtyBenchmarks();

// Counts that need no repetition.
void countCycleAllocations(Samples &samples);
void countDataAllocations(Samples &samples);
void countRegisterBytes(Samples &samples);

} // namespace bench
