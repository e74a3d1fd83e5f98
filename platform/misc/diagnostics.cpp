// Where messages go: three outlets (log, console, standard output), each with a default stream and
// a sink that a host may put in its place.
//
// Messages come while the program loads and while it ends, so the outlets are made at first use and
// never destroyed. A sink is called outside the lock: it may log itself, or replace itself. The
// default streams are flushed after every message, so that none is lost when the host dies.

#include "misc/diagnostics.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace {

using Tarn::MessageSink;

class Outlet {
public:
    explicit Outlet(std::FILE* stream) noexcept : stream_{stream} {}

    void setSink(MessageSink sink) {
        auto held = sink ? std::make_shared<const MessageSink>(std::move(sink)) : nullptr;
        const std::lock_guard lock{mutex_};
        sink_.swap(held);
    }

    void write(std::string_view text) {
        if (const auto sink = currentSink()) {
            (*sink)(text);
            return;
        }
        std::fwrite(text.data(), 1, text.size(), stream_);
        std::fflush(stream_);
    }

private:
    std::shared_ptr<const MessageSink> currentSink() {
        const std::lock_guard lock{mutex_};
        return sink_;
    }

    std::mutex mutex_;
    std::shared_ptr<const MessageSink> sink_;
    std::FILE* stream_;
};

Outlet& logOutlet() {
    static Outlet& outlet = *new Outlet{stderr};
    return outlet;
}

Outlet& consoleOutlet() {
    static Outlet& outlet = *new Outlet{stderr};
    return outlet;
}

Outlet& standardOutput() {
    static Outlet& outlet = *new Outlet{stdout};
    return outlet;
}

/// What `printf` would print; the format as it stands where that fails.
std::string formatted(const char* format, std::va_list arguments) {
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return format;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::string failedCheck(const char* expression, const char* place) {
    std::string text{"assertion failed "};
    text += expression ? expression : "";
    text += " at ";
    text += place ? place : "";
    return text += '\n';
}

} // namespace

void LogBoth(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    logOutlet().write(text);
}

void console_printf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    consoleOutlet().write(text);
}

void ole_splat(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    consoleOutlet().write(text);
}

namespace Tarn {

void setLogSink(MessageSink sink) {
    logOutlet().setSink(std::move(sink));
}

void setConsoleSink(MessageSink sink) {
    consoleOutlet().setSink(std::move(sink));
}

void setOutputSink(MessageSink sink) {
    standardOutput().setSink(std::move(sink));
}

void putLine(std::string_view text) {
    std::string line{text};
    line += '\n';
    standardOutput().write(line);
}

void reportFailedCheck(const char* expression, const char* place) {
    standardOutput().write(failedCheck(expression, place));
}

void reportFailedCheckOnConsole(const char* expression, const char* place) {
    consoleOutlet().write(failedCheck(expression, place));
}

} // namespace Tarn
