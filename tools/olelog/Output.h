#pragma once

#include "Pager.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// Makes sure that standard input, output and error are there: one that the caller closed is opened
/// so that using it fails. Otherwise the next file that is opened would take its number.
void occupyStandardFiles();

/// Writing to a closed pipe does not end the process: `Output` notices and ends quietly.
void ignoreClosedPipes();

/// Standard output or an open file, written in large pieces. After a failure it takes no more, and
/// `finish` tells.
class Output {
public:
    Output();
    /// Writes to a file that stays its owner's; the name is for messages.
    Output(int file, std::string name);

    /// Standard output for text that a person reads: through the pager where it is longer than the
    /// terminal.
    static Output forReading();

    void write(std::string_view text);
    /// Writes what is left, so that a message comes behind it. What is read through the pager is
    /// not hurried.
    void flush();
    /// True when nothing more will be taken: the reader has gone, or writing failed.
    [[nodiscard]] bool isClosed() const { return error_ != 0; }
    /// Writes what is left, and waits for the pager. Returns `code`, also when the reader has gone;
    /// the exit code of a failure, saying so, when writing failed.
    [[nodiscard]] int finish(int code);
    /// Writes what is left; 0, or the error number of the failure.
    [[nodiscard]] int end();

private:
    void writeOut();
    void startPagerWhereLong(std::string_view added);

    int file_;
    std::string name_;
    std::string gathered_;
    int error_ = 0;
    std::optional<std::size_t> linesLeft_; // on the screen, while it is open whether to page
    std::unique_ptr<Pager> pager_;
};
