// The pager: a shell runs it, as PAGER may hold options, and it reads from a pipe.

#include "Pager.h"

#include "messages.h"
#include "shownText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr int shellFoundNothing = 127;

/// Whether a program of this name is in one of the folders of PATH.
bool isInstalled(const std::string& program) {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path ? path : "";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
        if (access((std::string{folder} + "/" + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

/// The command to run; "" where there is none. Says so where the one that is wanted is not there.
std::string pagerCommand() {
    const char* const wanted = std::getenv("PAGER");
    if (!wanted) {
        return isInstalled("less") ? "less" : "";
    }
    std::string command{wanted};
    const std::string program = command.substr(0, command.find(' '));
    if (command.empty() || command == "cat") {
        return {};
    }
    const bool isName = program.find_first_of("/\"'$;|&(") == std::string::npos;
    if (isName && !isInstalled(program)) {
        say("there is no pager {}; PAGER names another one, --no-pager does without",
            inQuotes(program));
        return {};
    }
    return command;
}

/// Runs a command that reads from `input`; 0 where it cannot be started.
pid_t spawnShell(const std::string& command, int input) {
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    sigset_t usual; // what the tool ignores, a pager does not
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    sigaddset(&usual, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    std::array<std::string, 3> words{"sh", "-c", command};
    std::array<char*, 4> arguments{words[0].data(), words[1].data(), words[2].data(), nullptr};
    pid_t process = 0;
    const int error =
        posix_spawn(&process, "/bin/sh", &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error == 0 ? process : 0;
}

} // namespace

std::unique_ptr<Pager> Pager::start() {
    std::string command = pagerCommand();
    std::array<int, 2> ends{};
    if (command.empty() || pipe2(ends.data(), O_CLOEXEC) != 0) {
        return nullptr;
    }
    setenv("LESS", "FRX", 0); // leave at once what fits, keep colours and the screen
    const pid_t process = spawnShell(command, ends[0]);
    close(ends[0]);
    if (process == 0) {
        close(ends[1]);
        return nullptr;
    }
    const SignalHandler interrupt = std::signal(SIGINT, SIG_IGN);
    return std::unique_ptr<Pager>{new Pager{std::move(command), ends[1], process, interrupt}};
}

Pager::Pager(std::string command, int file, pid_t process, SignalHandler interrupt)
    : command_{std::move(command)}, file_{file}, process_{process}, interrupt_{interrupt} {}

Pager::~Pager() {
    wait();
}

bool Pager::wait() {
    if (process_ == 0) {
        return true;
    }
    close(std::exchange(file_, -1));
    const pid_t process = std::exchange(process_, 0);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    std::signal(SIGINT, interrupt_);
    const bool ran = !WIFEXITED(status) || WEXITSTATUS(status) != shellFoundNothing;
    if (!ran) {
        say("the pager {} cannot be run; PAGER names another one, --no-pager does without",
            inQuotes(command_));
    }
    return ran;
}
