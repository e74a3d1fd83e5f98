#pragma once

// Steps in a process of their own, for what would harm or hinder the tests behind them.

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs a step in a process of its own and returns its answer.
inline bool inChild(const std::function<bool()>& step) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(step() ? 1 : 0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "the step crashed";
    return WEXITSTATUS(status) == 1;
}

/// The same where no file can grow beyond so many bytes, as if the disk were full then.
inline bool inChildWithFullDisk(rlim_t bytes, const std::function<bool()>& step) {
    return inChild([&] {
        const rlimit limit{bytes, bytes};
        std::signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 && step();
    });
}
