#pragma once

#include <memory>
#include <string>
#include <sys/types.h>

/// The program through which a person reads what is longer than the terminal: what PAGER names,
/// else `less`.
class Pager {
public:
    /// Starts it; null where PAGER is empty or "cat", where there is none, or where it cannot be
    /// started: then the text goes to the terminal as it is. While it runs, the keyboard's
    /// interrupt is the pager's alone.
    static std::unique_ptr<Pager> start();

    /// As `wait`.
    ~Pager();
    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;

    /// The pipe into it, which takes no more once the person has left.
    [[nodiscard]] int file() const { return file_; }
    /// Ends the text and waits until the person has left. False where the pager could not be run;
    /// says so.
    bool wait();

private:
    using SignalHandler = void (*)(int);

    Pager(std::string command, int file, pid_t process, SignalHandler interrupt);

    std::string command_;
    int file_;
    pid_t process_;
    SignalHandler interrupt_; // what an interrupt does once the pager has ended
};
