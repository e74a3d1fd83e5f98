#pragma once

#include <string>
#include <vector>

/// Where each row of a table came from: lines of logs, or nothing in particular.
class RowOrigins {
public:
    /// Rows from here on came from these lines of a log.
    void add(unsigned firstRow, std::string log, std::vector<unsigned> lines);
    /// "log.ale:12"; "row 3" for a row that came from no log.
    [[nodiscard]] std::string of(unsigned row) const;

private:
    struct Run {
        unsigned firstRow;
        std::string log;
        std::vector<unsigned> lines;
    };
    std::vector<Run> runs_;
};
