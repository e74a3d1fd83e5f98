#pragma once

// Steps in a process of their own, for what would harm or hinder the tests behind them.

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// A process that ends with what the work returns. Throws where the system gives none: as a number
/// to kill or to wait for, fork's -1 means every process there is.
inline pid_t startChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error{"no process for a child"};
    }
    if (child == 0) {
        [&]() noexcept { _exit(work()); }(); // what it throws must not reach the parent's tests
    }
    return child;
}

/// Waits for the end of a process and returns its status.
inline int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

/// Runs a step in a process of its own and returns its answer.
inline bool inChild(const std::function<bool()>& step) {
    const int status = statusOf(startChild([&step] { return step() ? 1 : 0; }));
    EXPECT_TRUE(WIFEXITED(status)) << "the step crashed";
    return WIFEXITED(status) && WEXITSTATUS(status) == 1;
}

/// The same where no file can grow beyond so many bytes, as if the disk were full then.
inline bool inChildWithFullDisk(rlim_t bytes, const std::function<bool()>& step) {
    return inChild([&] {
        const rlimit limit{bytes, bytes};
        std::signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 && step();
    });
}
