// Rows come from logs in runs, in the order of the logs.

#include "RowOrigins.h"

#include <fmt/format.h>
#include <utility>

void RowOrigins::add(unsigned firstRow, std::string log, std::vector<unsigned> lines) {
    runs_.push_back({firstRow, std::move(log), std::move(lines)});
}

std::string RowOrigins::of(unsigned row) const {
    for (const Run& run : runs_) {
        if (row >= run.firstRow && row - run.firstRow < run.lines.size()) {
            return fmt::format("{}:{}", run.log, run.lines[row - run.firstRow]);
        }
    }
    return fmt::format("row {}", row + 1);
}
