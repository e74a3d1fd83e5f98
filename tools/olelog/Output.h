#pragma once

#include <string>
#include <string_view>

/// Makes sure that standard input, output and error are there: one that the caller closed is opened
/// so that using it fails. Otherwise the next file that is opened would take its number.
void occupyStandardFiles();

/// Writing to a closed pipe no longer ends the process: `Output` notices and ends quietly.
void ignoreClosedPipes();

/// Standard output or an open file, written in large pieces. After a failure it takes no more, and
/// `finish` tells.
class Output {
public:
    Output();
    /// Writes to a file that stays its owner's; the name is for messages.
    Output(int file, std::string name);

    void write(std::string_view text);
    /// True when nothing more will be taken: the reader has gone, or writing failed.
    [[nodiscard]] bool isClosed() const { return error_ != 0; }
    /// Writes what is left. Returns `code`, also when the reader has gone; the exit code of a
    /// failure, saying so, when writing failed.
    [[nodiscard]] int finish(int code);
    /// Writes what is left; 0, or the error number of the failure.
    [[nodiscard]] int end();

private:
    void flush();

    int file_;
    std::string name_;
    std::string gathered_;
    int error_ = 0;
};
