#pragma once

// What every benchmark measures: the time of a step without its preparation, and what can be
// counted beside it.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <string>

namespace bench {

/// Calls of `operator new` in the process so far.
std::size_t allocations() noexcept;

/// MiB that the process holds in memory now, and the most it held since `forgetPeak`.
double residentMiB();
double peakMiB();
void forgetPeak();

using Body = std::function<void(benchmark::State& state, unsigned rows)>;

/// Registers a benchmark, STEP/WHO/ROWS, for 1,000 to 1,000,000 rows. `who` is "ours" or what the
/// step is compared with. Small sizes run several times in one measurement.
void add(const std::string& step, const char* who, const Body& body);

/// Runs a step as often as asked, each time on what `prepare` returns (a reference, or an object
/// that is destroyed behind the measurement), and notes time, processor time, rows and allocations.
/// A step that returns false did not do its work: the benchmark fails.
template <class Prepare, class Step>
void measure(benchmark::State& state, unsigned rows, Prepare prepare, Step step) {
    using Seconds = std::chrono::duration<double>;
    std::size_t made = 0;
    std::clock_t worked = 0;
    for ([[maybe_unused]] auto _ : state) {
        decltype(auto) subject = prepare();
        const std::size_t before = allocations();
        const std::clock_t processor = std::clock();
        const auto start = std::chrono::steady_clock::now();
        const bool done = step(subject);
        state.SetIterationTime(Seconds{std::chrono::steady_clock::now() - start}.count());
        worked += std::clock() - processor;
        made += allocations() - before;
        if (!done) {
            state.SkipWithError("the step did not do its work");
            break;
        }
    }
    using benchmark::Counter;
    const double processorMs = 1000.0 * static_cast<double>(worked) / CLOCKS_PER_SEC;
    state.counters["cpu_ms"] = Counter(processorMs, Counter::kAvgIterations);
    state.counters["rows"] = rows;
    state.counters["rows/s"] = Counter(rows, Counter::kIsIterationInvariantRate);
    state.counters["allocations"] = Counter(static_cast<double>(made), Counter::kAvgIterations);
}

} // namespace bench
