#pragma once

#include "tarn/LightweightString.h"
#include "TemporaryFile.h"

#include <optional>
#include <string>
#include <string_view>

/// The system's words for an error number, "No such file or directory", and what a person can do
/// about it.
std::string reasonText(int error);

/// Writes all bytes; 0, or the error number.
int writeAll(int file, std::string_view bytes);

/// Copies the rest of one open file to another; 0, or the error number.
int copyAll(int from, int to);

/// A path as the module takes it.
LightweightString<wchar_t> modulePath(const std::string& path);

/// Whether a file that is read (- for standard input) is the one at a path, by whatever names. The
/// path - leads to none.
bool isSameFile(const std::string& input, const std::string& path);

/// A file to read, as a person named it: a path, or - for standard input. What can be read only
/// once (a pipe, a terminal) is copied into a temporary file, so that it can be read again.
class InputFile {
public:
    /// Opens the file; says why and gives nothing where it cannot be read.
    static std::optional<InputFile> open(const std::string& name);

    /// The name for messages.
    [[nodiscard]] const std::string& name() const { return name_; }
    /// Where its contents stand.
    [[nodiscard]] const std::string& path() const { return copy_ ? copy_->path() : path_; }

private:
    bool takeCopy(int file);

    std::string name_;
    std::string path_;
    std::optional<TemporaryFile> copy_;
};
