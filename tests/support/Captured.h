#pragma once

// Catches what the module says while it lives: log, console and standard output, each as one text.

#include "misc/diagnostics.h"

#include <string>
#include <string_view>

class Captured {
public:
    Captured() {
        Tarn::setLogSink([this](std::string_view text) { log += text; });
        Tarn::setConsoleSink([this](std::string_view text) { console += text; });
        Tarn::setOutputSink([this](std::string_view text) { output += text; });
    }
    Captured(const Captured&) = delete;
    Captured& operator=(const Captured&) = delete;
    ~Captured() {
        Tarn::setLogSink({});
        Tarn::setConsoleSink({});
        Tarn::setOutputSink({});
    }
    [[nodiscard]] bool silent() const { return log.empty() && console.empty() && output.empty(); }

    std::string log;
    std::string console;
    std::string output;
};
