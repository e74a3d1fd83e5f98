#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

/// While one lives, a person at a terminal sees what long work is at, and how far it is. Nothing
/// where messages go elsewhere or the tool is to be quiet, and nothing of work that is done at
/// once. One lives at a time: it takes the module's reports.
class Progress {
public:
    /// `doing` is what a person reads, as "reading day-12.ale".
    explicit Progress(std::string doing);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Tells that `done` of `total` is done; to be called often, every row say.
    void at(std::uint64_t done, std::uint64_t total);
    /// The same work goes on with something else.
    void nowDoing(std::string doing);
    /// Work on so many rows begins that cannot be measured: without a bar, where they are many.
    void unmeasured(std::uint64_t rows);

private:
    using Clock = std::chrono::steady_clock;

    void showLine(std::uint64_t done, std::uint64_t total);

    std::string doing_;
    std::optional<std::size_t> width_; ///< of the terminal; nothing where there is none
    Clock::time_point next_;           ///< when the line is shown again
    std::uint64_t calls_ = 0;
};
