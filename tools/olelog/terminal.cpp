// What is known about the terminal, and what it may get.

#include "terminal.h"

#include "tarn/numbers.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr std::size_t usualWidth = 80;
constexpr std::size_t usualHeight = 24;

Appearance& appearance() {
    static Appearance theOne;
    return theOne;
}

const char* setting(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

bool isDumb() {
    const std::string_view kind = setting("TERM");
    return kind.empty() || kind == "dumb";
}

/// What a setting says, else what the terminal does; 0 where neither knows.
std::size_t wantedOr(const char* name, unsigned short ofTerminal) {
    const int wanted = Tarn::parseInt(setting(name));
    return wanted > 0 ? static_cast<std::size_t>(wanted) : ofTerminal;
}

winsize sizeOf(int file) {
    winsize size{};
    return ioctl(file, TIOCGWINSZ, &size) == 0 ? size : winsize{};
}

std::optional<std::size_t> widthOf(int file) {
    if (isatty(file) == 0) {
        return std::nullopt;
    }
    const std::size_t width = wantedOr("COLUMNS", sizeOf(file).ws_col);
    return width == 0 ? usualWidth : width;
}

bool mayStyle(int file) {
    const Appearance::Colour wanted = appearance().colour;
    if (wanted != Appearance::Colour::Auto) {
        return wanted == Appearance::Colour::Always;
    }
    return isatty(file) != 0 && *setting("NO_COLOR") == '\0' && !isDumb();
}

} // namespace

void setAppearance(const Appearance& wanted) {
    appearance() = wanted;
}

bool isQuiet() {
    return appearance().quiet;
}

std::optional<std::size_t> terminalWidth() {
    return widthOf(STDOUT_FILENO);
}

std::optional<std::size_t> messageWidth() {
    return widthOf(STDERR_FILENO);
}

std::optional<std::size_t> linesBeforePaging() {
    if (!appearance().pager || isDumb() || isatty(STDOUT_FILENO) == 0) {
        return std::nullopt;
    }
    const std::size_t height = wantedOr("LINES", sizeOf(STDOUT_FILENO).ws_row);
    return height == 0 ? usualHeight : height;
}

bool mayStyleOutput() {
    return mayStyle(STDOUT_FILENO);
}

bool mayStyleMessages() {
    return mayStyle(STDERR_FILENO);
}
