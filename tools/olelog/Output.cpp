// Standard output. A reader that goes away early, as `head` does, has what it wanted: that is no
// failure and no message.

#include "Output.h"

#include "Command.h"
#include "files.h"
#include "messages.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::size_t pieceBytes = 256 * std::size_t{1024};

} // namespace

void occupyStandardFiles() {
    for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(file, F_GETFD) < 0) { // the lowest free number is this one
            static_cast<void>(open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

void ignoreClosedPipes() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ,
                SIG_IGN); // a file that grows too long fails to be written, and that is told
}

Output::Output() : Output{STDOUT_FILENO, "standard output"} {}

Output::Output(int file, std::string name) : file_{file}, name_{std::move(name)} {
    gathered_.reserve(pieceBytes);
}

Output Output::forReading() {
    Output output;
    output.linesLeft_ = linesBeforePaging();
    return output;
}

void Output::write(std::string_view text) {
    gathered_ += text;
    if (linesLeft_) {
        startPagerWhereLong(text);
    }
    if (!linesLeft_ && gathered_.size() >= pieceBytes) {
        writeOut();
    }
}

/// The last line of the screen is the prompt's.
void Output::startPagerWhereLong(std::string_view added) {
    const auto lines = static_cast<std::size_t>(std::count(added.begin(), added.end(), '\n'));
    if (lines < *linesLeft_) {
        *linesLeft_ -= lines;
        return;
    }
    linesLeft_.reset();
    pager_ = Pager::start();
    file_ = pager_ ? pager_->file() : file_;
}

void Output::flush() {
    if (!linesLeft_) {
        writeOut();
    }
}

void Output::writeOut() {
    if (error_ == 0) {
        error_ = writeAll(file_, gathered_);
    }
    gathered_.clear();
}

int Output::end() {
    writeOut();
    return error_;
}

int Output::finish(int code) {
    const int error = end();
    if (pager_ && !pager_->wait()) {
        return exitFailure;
    }
    if (error == 0 || error == EPIPE) {
        return code;
    }
    say("cannot write to {}: {}", name_, reasonText(error));
    return exitFailure;
}
