// What is known about the terminal, and what only a terminal gets.

#include "terminal.h"

#include "shownText.h"
#include "tarn/numbers.h"

#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr std::size_t usualWidth = 80;
constexpr std::size_t progressWidth = 72;

const char* setting(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

} // namespace

std::optional<std::size_t> terminalWidth() {
    if (isatty(STDOUT_FILENO) == 0) {
        return std::nullopt;
    }
    const int wanted = Tarn::parseInt(setting("COLUMNS"));
    if (wanted > 0) {
        return static_cast<std::size_t>(wanted);
    }
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : usualWidth;
}

bool mayStyleOutput() {
    const std::string_view kind = setting("TERM");
    return isatty(STDOUT_FILENO) != 0 && *setting("NO_COLOR") == '\0' && !kind.empty() &&
           kind != "dumb";
}

Progress::Progress() : enabled_{isatty(STDERR_FILENO) != 0} {}

Progress::~Progress() {
    clear();
}

void Progress::show(const char* doing, const char* name) {
    if (enabled_) {
        clear();
        const auto text = cutToWidth(shown(fmt::format("{} {} ...", doing, name)), progressWidth);
        std::fputs(text.c_str(), stderr);
        std::fflush(stderr);
        standing_ = true;
    }
}

void Progress::clear() {
    if (standing_) {
        std::fputs("\r\x1b[K", stderr);
        standing_ = false;
    }
}
