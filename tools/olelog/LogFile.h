#pragma once

#include "files.h"

#include <string>
#include <vector>

/// A log as far as its data, read by the rules of the import.
struct LogHead {
    struct Parameter {
        std::string name;
        std::string value;
    };

    std::string refusal;                   ///< why the log cannot be taken; empty when it can
    std::vector<Parameter> parameters;     ///< the heading lines that hold a name and a value
    std::vector<std::string> oddLines;     ///< heading lines that are not taken, for people
    std::vector<std::string> shiftedLines; ///< rows of which a leading tab moves the values left
    std::vector<std::string> zeroLines;    ///< lines of which the part behind a zero byte is lost
    std::vector<std::string> columns;      ///< the column names, in order
    unsigned namesLine = 0;                ///< where they stand, from 1
};

/// Reads the head of a log; finds out why it cannot be taken, where it cannot.
LogHead readLogHead(const InputFile& log);

/// The pieces of a row's line, by the rules of the import.
std::vector<std::string_view> piecesOfRow(std::string_view line);
