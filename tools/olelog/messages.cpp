// What the tool tells people: lines on standard error that begin with its name.

#include "messages.h"

#include "misc/diagnostics.h"
#include "shownText.h"
#include "tarn/trimmed.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <fmt/color.h>
#include <utility>

namespace {

void setModuleSinks(const Tarn::MessageSink& sink) {
    Tarn::setLogSink(sink);
    Tarn::setConsoleSink(sink);
    Tarn::setOutputSink(sink);
}

constexpr std::size_t mostFindingsTold = 20;

/// Whether a line of progress stands on the terminal.
bool& progressStands() {
    static bool stands = false;
    return stands;
}

bool needsQuotes(std::string_view name) {
    return name.empty() || name.find_first_of(",\"\t;") != std::string_view::npos ||
           name.front() == ' ' || name.back() == ' ';
}

/// Prints a message, the tool's name in the given style.
void printLine(std::string_view text, const fmt::text_style& style) {
    clearProgress();
    constexpr std::string_view name = "olelog:";
    const std::string line = fmt::format(
        "{} {}\n", mayStyleMessages() ? fmt::format(style, "{}", name) : std::string{name},
        shown(text));
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace

void sayLine(std::string_view text) {
    printLine(text, fmt::emphasis::bold | fmt::fg(fmt::terminal_color::yellow));
}

void noteLine(std::string_view text) {
    if (!isQuiet()) {
        printLine(text, fmt::emphasis::faint);
    }
}

void showProgress(std::string_view line) {
    clearProgress();
    std::fwrite(line.data(), 1, line.size(), stderr);
    progressStands() = true;
}

void clearProgress() {
    if (std::exchange(progressStands(), false)) {
        std::fputs("\r\x1b[K", stderr);
    }
}

void redirectModuleMessages() {
    setModuleSinks([](std::string_view text) { sayLine(Tarn::trimmed(text)); });
}

ModuleSilence::ModuleSilence() {
    setModuleSinks([](std::string_view) {});
}

ModuleSilence::~ModuleSilence() {
    redirectModuleMessages();
}

std::string listed(const std::vector<std::string>& names, std::size_t most) {
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
        list += i == 0 ? "" : ", ";
        list += needsQuotes(names[i]) ? inQuotes(names[i]) : names[i];
    }
    return names.size() <= most ? list : fmt::format("{} and {} more", list, names.size() - most);
}

std::string counted(std::size_t n, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", n, n == 1 ? one : many);
}

void Findings::tell(std::string_view text) {
    if (++count_ <= mostFindingsTold) {
        sayLine(text);
    }
}

void Findings::close() const {
    if (count_ > mostFindingsTold) {
        say("... and {} more of this kind", count_ - mostFindingsTold);
    }
}
