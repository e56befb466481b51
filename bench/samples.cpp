// SPDX-License-Identifier: MIT
// Measured times by name, one per round.
#include "samples.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>

namespace bench {
namespace {

const char *const manualMark = "manual_time";

double threadSeconds()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

} // namespace

bool Collector::ReportContext(const Context & /*context*/)
{
    return true;
}

void Collector::ReportRuns(const std::vector<Run> &runs)
{
    for (const Run &run : runs) {
        if (run.error_occurred) {
            std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(),
                         run.error_message.c_str());
            continue;
        }
        const bool keepsOwnTime = run.run_name.time_type == manualMark;
        m_samples[run.run_name.function_name].push_back(keepsOwnTime ? run.GetAdjustedRealTime()
                                                                     : run.GetAdjustedCPUTime());
    }
}

void measure(const std::string &name, int iterations, std::function<void(benchmark::State &)> body)
{
    benchmark::RegisterBenchmark(name.c_str(), std::move(body))->Iterations(iterations);
}

void measureProcess(const std::string &name, int iterations,
                    std::function<void(benchmark::State &)> body)
{
    benchmark::RegisterBenchmark(name.c_str(), std::move(body))
        ->Iterations(iterations)
        ->MeasureProcessCPUTime();
}

void measureSteps(const std::string &name, int iterations, double operations,
                  std::function<void()> prepare, std::function<void()> operation)
{
    const auto body = [=](benchmark::State &state) {
        for ([[maybe_unused]] auto step : state) {
            prepare();
            const double start = threadSeconds();
            operation();
            state.SetIterationTime((threadSeconds() - start) / operations);
        }
    };
    benchmark::RegisterBenchmark(name.c_str(), body)->Iterations(iterations)->UseManualTime();
}

double median(std::vector<double> values)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

} // namespace bench
