// What is known about the terminal, and what it may get.

#include "terminal.h"

#include "tarn/numbers.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr std::size_t usualWidth = 80;

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
