// Registration, the counting operator new, and what the system tells of the process's memory.

#include "Measure.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <new>

namespace {

std::size_t allocationCount = 0; // one thread runs the benchmarks

void* counted(void* memory) {
    if (!memory) {
        throw std::bad_alloc{};
    }
    ++allocationCount;
    return memory;
}

/// A line of the process's status, in MiB.
double statusMiB(const std::string& key) {
    std::ifstream status{"/proc/self/status"};
    for (std::string word; status >> word;) {
        if (word == key) {
            double kibibytes = 0;
            status >> kibibytes;
            return kibibytes / 1024;
        }
    }
    return 0;
}

} // namespace

// The other forms come down to these.
void* operator new(std::size_t size) {
    return counted(std::malloc(size == 0 ? 1 : size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto align = static_cast<std::size_t>(alignment);
    return counted(std::aligned_alloc(align, (size + align - 1) / align * align));
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace bench {

std::size_t allocations() noexcept {
    return allocationCount;
}

double residentMiB() {
    return statusMiB("VmRSS:");
}

double peakMiB() {
    return statusMiB("VmHWM:");
}

void forgetPeak() {
    std::ofstream{"/proc/self/clear_refs"} << 5;
}

void add(const std::string& step, const char* who, const Body& body) {
    const auto run = [body](benchmark::State& state) {
        body(state, static_cast<unsigned>(state.range(0)));
    };
    for (const int rows : {1'000, 10'000, 100'000, 1'000'000}) {
        benchmark::RegisterBenchmark((step + '/' + who).c_str(), run)
            ->Arg(rows)
            ->Iterations(std::max(1, 50'000 / rows))
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

} // namespace bench
