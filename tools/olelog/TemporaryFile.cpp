// Temporary files, and a list of them that a signal handler can read: fixed room, no locks, each
// entry published by its first byte.

#include "TemporaryFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::array endingSignals{SIGHUP, SIGINT, SIGTERM};
constexpr std::size_t mostFiles = 16;

using PathRoom = std::array<char, PATH_MAX>;

std::array<PathRoom, mostFiles>& pathRooms() {
    static std::array<PathRoom, mostFiles> rooms{};
    return rooms;
}

std::array<PathRoom, mostFiles>* signalRooms = nullptr; // set before the handler is

extern "C" void removeAndEnd(int signal) {
    for (const PathRoom& room : *signalRooms) {
        if (room[0] != '\0') {
            unlink(room.data());
        }
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

sigset_t endingSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : endingSignals) {
        sigaddset(&set, signal);
    }
    return set;
}

void remember(const std::string& path) {
    for (PathRoom& room : pathRooms()) {
        if (room[0] == '\0' && path.size() < room.size()) {
            std::copy(path.begin() + 1, path.end(), room.begin() + 1);
            room[path.size()] = '\0';
            room[0] = path[0];
            return;
        }
    }
}

void forget(const std::string& path) {
    for (PathRoom& room : pathRooms()) {
        if (path == room.data()) {
            room[0] = '\0';
        }
    }
}

} // namespace

void removeTemporaryFilesOnSignals() {
    signalRooms = &pathRooms();
    for (const int signal : endingSignals) {
        struct sigaction old {};
        sigaction(signal, nullptr, &old);
        if (old.sa_handler != SIG_IGN) { // a caller such as nohup wants it ignored
            std::signal(signal, removeAndEnd);
        }
    }
}

SignalPause::SignalPause() {
    const sigset_t set = endingSet();
    sigprocmask(SIG_BLOCK, &set, nullptr);
}

SignalPause::~SignalPause() {
    const sigset_t set = endingSet();
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
}

std::optional<TemporaryFile> TemporaryFile::inFolder(const std::string& folder) {
    const SignalPause pause; // no signal between making the file and remembering it
    std::string path = folder + "/.olelog-XXXXXX";
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file < 0) {
        return std::nullopt;
    }
    remember(path);
    return TemporaryFile{std::move(path), file};
}

std::optional<TemporaryFile> TemporaryFile::anywhere() {
    const char* const folder = std::getenv("TMPDIR");
    return inFolder(folder && *folder != '\0' ? folder : "/tmp");
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : path_{std::exchange(other.path_, {})}, file_{std::exchange(other.file_, -1)} {}

TemporaryFile::~TemporaryFile() {
    close();
    if (!path_.empty()) {
        unlink(path_.c_str());
        forget(path_);
    }
}

void TemporaryFile::close() {
    if (file_ >= 0) {
        ::close(std::exchange(file_, -1));
    }
}

bool TemporaryFile::moveTo(const std::string& target) {
    const SignalPause pause;
    if (std::rename(path_.c_str(), target.c_str()) != 0) {
        return false;
    }
    forget(path_);
    path_.clear();
    return true;
}
