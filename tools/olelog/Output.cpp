// Standard output. A reader that goes away early, as `head` does, has what it wanted: that is no
// failure and no message.

#include "Output.h"

#include "Command.h"
#include "files.h"
#include "messages.h"

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

void Output::write(std::string_view text) {
    gathered_ += text;
    if (gathered_.size() >= pieceBytes) {
        flush();
    }
}

void Output::flush() {
    if (error_ == 0) {
        error_ = writeAll(file_, gathered_);
    }
    gathered_.clear();
}

int Output::end() {
    flush();
    return error_;
}

int Output::finish(int code) {
    const int error = end();
    if (error == 0 || error == EPIPE) {
        return code;
    }
    say("cannot write to {}: {}", name_, reasonText(error));
    return exitFailure;
}
