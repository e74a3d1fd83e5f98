#pragma once

// System calls that fail, or that the process is killed at, at a chosen place of a save or a load.
// The program's own definitions stand before the system's, for the libraries too, so one source of
// a program includes this, and only between `arm` and `disarm` is anything different.
//
// A write that fails has written half of its bytes before. A flush does not reach the disk: nothing
// here can tell.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

namespace faults {

enum class Call { Open, Write, Flush, Close, Rename, Unlink, Mode, Owner, Status, Access, Read };
constexpr std::array<const char*, 11> callNames{{"open", "write", "flush", "close", "rename",
                                                 "unlink", "mode", "owner", "status", "access",
                                                 "read"}};

enum class How {
    Fails,
    FailsAndStays, ///< so do all removals after it
    IsInterrupted,
    DoesPart,
    Kills,
};

struct Fault {
    Call call = Call::Open;
    unsigned nth = 0; ///< from 1; 0 for no fault
    How how = How::Fails;
};

struct State {
    bool armed = false;
    Fault fault;
    std::array<unsigned, callNames.size()> calls{};
    bool struck = false;
    bool struckAfterRename = false;
};
inline State state;

inline void arm(const Fault& fault) {
    state = {true, fault, {}, false, false};
}
inline State disarm() {
    state.armed = false;
    return state;
}

/// Counts a call; whether it is the one.
inline bool strikes(Call call) {
    if (!state.armed) {
        return false;
    }
    const bool chosen = ++state.calls[static_cast<std::size_t>(call)] == state.fault.nth &&
                        call == state.fault.call;
    if (chosen) {
        state.struck = true;
        state.struckAfterRename = state.calls[static_cast<std::size_t>(Call::Rename)] != 0;
    }
    return chosen ||
           (state.struck && call == Call::Unlink && state.fault.how == How::FailsAndStays);
}

/// What a call does that was struck, having done nothing or what it cannot take back.
inline int fail(int error) {
    if (state.fault.how == How::Kills) {
        kill(getpid(), SIGKILL);
    }
    errno = state.fault.how == How::IsInterrupted ? EINTR : error;
    return -1;
}

/// The system's own function.
template <class Result, class... Arguments>
Result pass(const char* name, Arguments... arguments) {
    return reinterpret_cast<Result (*)(Arguments...)>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace faults

// The labels keep the definitions apart from the declarations of the system's headers, which differ
// in small things from system to system.
#define OLE_FAULTY(result, name, ...)                                                              \
    extern "C" __attribute__((visibility("default")))                                              \
    result faulty_##name(__VA_ARGS__) __asm__(#name);                                              \
    result faulty_##name(__VA_ARGS__)

OLE_FAULTY(int, open, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t);
    va_end(arguments);
    if (faults::strikes(faults::Call::Open)) {
        return faults::fail(EIO);
    }
    // Called through the type that it has: some systems pass variable arguments in another way.
    return reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"))(path, flags,
                                                                                      mode);
}

OLE_FAULTY(ssize_t, write, int file, const void* bytes, std::size_t size) {
    if (!faults::strikes(faults::Call::Write)) {
        return faults::pass<ssize_t>("write", file, bytes, size);
    }
    if (faults::state.fault.how == faults::How::IsInterrupted) {
        return faults::fail(EINTR);
    }
    const auto part = faults::pass<ssize_t>("write", file, bytes, size / 2);
    return faults::state.fault.how == faults::How::DoesPart ? part : faults::fail(ENOSPC);
}

OLE_FAULTY(ssize_t, read, int file, void* bytes, std::size_t size) {
    if (!faults::strikes(faults::Call::Read)) {
        return faults::pass<ssize_t>("read", file, bytes, size);
    }
    return faults::state.fault.how == faults::How::DoesPart
               ? faults::pass<ssize_t>("read", file, bytes, size / 2)
               : faults::fail(EIO);
}

OLE_FAULTY(int, fsync, int file) {
    if (faults::strikes(faults::Call::Flush)) {
        return faults::fail(EIO);
    }
    return faults::state.armed ? 0 : faults::pass<int>("fsync", file);
}

OLE_FAULTY(int, fdatasync, int file) {
    return faulty_fsync(file);
}

OLE_FAULTY(int, close, int file) {
    const bool struck = faults::strikes(faults::Call::Close);
    if (struck && faults::state.fault.how == faults::How::Kills) {
        faults::fail(EIO);
    }
    const int result = faults::pass<int>("close", file);
    return struck ? faults::fail(EIO) : result;
}

OLE_FAULTY(int, rename, const char* from, const char* to) {
    return faults::strikes(faults::Call::Rename) ? faults::fail(EIO)
                                                 : faults::pass<int>("rename", from, to);
}

OLE_FAULTY(int, unlink, const char* path) {
    return faults::strikes(faults::Call::Unlink) ? faults::fail(EIO)
                                                 : faults::pass<int>("unlink", path);
}

OLE_FAULTY(int, fchmod, int file, mode_t mode) {
    return faults::strikes(faults::Call::Mode) ? faults::fail(EPERM)
                                               : faults::pass<int>("fchmod", file, mode);
}

OLE_FAULTY(int, fchown, int file, uid_t owner, gid_t group) {
    return faults::strikes(faults::Call::Owner) ? faults::fail(EPERM)
                                                : faults::pass<int>("fchown", file, owner, group);
}

OLE_FAULTY(int, stat, const char* path, void* status) {
    return faults::strikes(faults::Call::Status) ? faults::fail(EIO)
                                                 : faults::pass<int>("stat", path, status);
}

OLE_FAULTY(int, fstat, int file, void* status) {
    return faults::strikes(faults::Call::Status) ? faults::fail(EIO)
                                                 : faults::pass<int>("fstat", file, status);
}

OLE_FAULTY(int, faccessat, int folder, const char* path, int mode, int flags) {
    return faults::strikes(faults::Call::Access)
               ? faults::fail(EIO)
               : faults::pass<int>("faccessat", folder, path, mode, flags);
}
#undef OLE_FAULTY
