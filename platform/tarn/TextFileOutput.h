#pragma once

#include "tarn/FileReplacement.h"

#include <string>
#include <string_view>

namespace Tarn {

/// Lines on their way into a file: gathered, and written in large pieces. Takes the same memory
/// however many lines pass.
class TextFileOutput {
public:
    /// See `FileReplacement`. `lineEnd` must outlive the object.
    TextFileOutput(const char* path, std::string_view lineEnd, bool flush);

    void appendLine(std::string_view line);
    /// Writes what is left and puts the file in place; false when any step failed.
    bool finish() noexcept;

private:
    void append(std::string_view bytes);
    void writeGathered() noexcept;

    std::string_view lineEnd_;
    std::string gathered_;
    FileReplacement file_;
};

} // namespace Tarn
