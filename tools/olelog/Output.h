#pragma once

#include <string>
#include <string_view>

/// Writing to a closed pipe no longer ends the process: `Output` notices and ends quietly.
void ignoreClosedPipes();

/// Standard output, written in large pieces. After a failure it takes no more, and `finish` tells.
class Output {
public:
    Output();

    void write(std::string_view text);
    /// True when nothing more will be taken: the reader has gone, or writing failed.
    [[nodiscard]] bool isClosed() const { return error_ != 0; }
    /// Writes what is left. Returns `code`, also when the reader has gone; the exit code of a
    /// failure, saying so, when writing failed.
    [[nodiscard]] int finish(int code);

private:
    void flush();

    std::string gathered_;
    int error_ = 0;
};
