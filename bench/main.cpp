// The benchmark program. bench/report runs it step by step; by hand it takes the options of Google
// Benchmark, and wants a filter, for it knows every size:
//
//     ole_bench --benchmark_filter='^(load|sort2)/.*/100000/'

#include "suites.h"

#include "tarn/TextFile.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    TextFile::setFlushToDisk(false); // a benchmark of the disk otherwise
    bench::addFiles();
    bench::addSorting();
    bench::addSearch();
    bench::addDeletion();
    bench::addViews();
    bench::addAle();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    return benchmark::RunSpecifiedBenchmarks() == 0 ? 1 : 0;
}
