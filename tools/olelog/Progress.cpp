// The bar that long work shows. The module reports its progress to the watchdog; loops of the tool
// report theirs themselves.

#include "Progress.h"

#include "messages.h"
#include "misc/SystemWatchdog.h"
#include "shownText.h"
#include "terminal.h"

#include <algorithm>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 400ms; // what takes less is not worth a line
constexpr auto betweenLines = 100ms;
constexpr std::uint64_t callsBetweenClocks = 256;
constexpr std::uint64_t manyRows = 100000;
constexpr std::size_t widestBar = 30;
constexpr std::size_t leastBar = 10;
constexpr std::size_t besideBar = sizeof "olelog:    100 % []";

/// "[######....]"
std::string bar(std::size_t width, std::uint64_t done, std::uint64_t total) {
    const auto filled = static_cast<std::size_t>(width * done / total);
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "]";
}

} // namespace

Progress::Progress(std::string doing)
    : doing_{std::move(doing)}, width_{isQuiet() ? std::nullopt : messageWidth()},
      next_{Clock::now() + patience} {
    if (!width_) {
        return;
    }
    SystemWatchdog::setProgressObserver([this](std::uint64_t done, std::uint64_t total) {
        calls_ = 0; // the module reports rarely enough
        at(done, total);
    });
}

Progress::~Progress() {
    if (width_) {
        SystemWatchdog::setProgressObserver({});
        clearProgress();
    }
}

void Progress::nowDoing(std::string doing) {
    doing_ = std::move(doing);
}

void Progress::unmeasured(std::uint64_t rows) {
    if (width_ && rows >= manyRows) {
        showLine(0, 0);
    }
}

void Progress::at(std::uint64_t done, std::uint64_t total) {
    if (!width_ || calls_++ % callsBetweenClocks != 0) {
        return;
    }
    const Clock::time_point now = Clock::now();
    if (now >= next_) {
        next_ = now + betweenLines;
        showLine(done, total);
    }
}

void Progress::showLine(std::uint64_t done, std::uint64_t total) {
    std::string what = shown(doing_);
    const std::size_t room = *width_ > besideBar ? *width_ - besideBar : 0;
    if (total == 0 || room < leastBar) {
        showProgress(cutToWidth("olelog: " + what + " ...", *width_ - 1));
        return;
    }
    what = cutToWidth(what, room - leastBar);
    const std::size_t width = std::min(widestBar, room - displayWidth(what));
    showProgress(fmt::format("olelog: {} {} {:3} %", what, bar(width, done, total),
                             100 * std::min(done, total) / total));
}
