#pragma once

#include "tarn/export.h"

#include <functional>
#include <string_view>

/// @file
/// Where the library's messages go. Each sink can be replaced by the host, on any thread; an empty
/// function restores the default. Messages are formatted by the caller's arguments as `printf`
/// does. A sink gets each message whole; most end in a newline, not all.

/// Has the compiler check arguments against the format.
#if defined(__GNUC__)
#define TARN_PRINTF_LIKE __attribute__((format(printf, 1, 2)))
#else
#define TARN_PRINTF_LIKE
#endif

/// Warnings and errors for the log; standard error by default.
TARN_API void LogBoth(const char* format, ...) TARN_PRINTF_LIKE;
/// Messages for the console; standard error by default.
TARN_API void console_printf(const char* format, ...) TARN_PRINTF_LIKE;
/// Messages of last resort, to the console.
TARN_API void ole_splat(const char* format, ...) TARN_PRINTF_LIKE;

/// What the platform offers besides its global names.
namespace Tarn {

/// Takes a message, which is good during the call alone. It may log itself and replace itself.
using MessageSink = std::function<void(std::string_view)>;

/// Where `LogBoth` goes; standard error by default.
TARN_API void setLogSink(MessageSink sink);
/// Where `console_printf`, `ole_splat` and `reportFailedCheckOnConsole` go; standard error by
/// default.
TARN_API void setConsoleSink(MessageSink sink);
/// Where `putLine` and `reportFailedCheck` go; standard output by default.
TARN_API void setOutputSink(MessageSink sink);

/// Prints a line and a newline on standard output.
TARN_API void putLine(std::string_view text);
/// Prints "assertion failed %s at %s\n" on standard output and returns: a failed check never stops
/// a host.
TARN_API void reportFailedCheck(const char* expression, const char* place);
/// The same on the console.
TARN_API void reportFailedCheckOnConsole(const char* expression, const char* place);

} // namespace Tarn
