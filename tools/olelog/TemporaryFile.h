#pragma once

#include <optional>
#include <string>

/// When a signal ends the process, its temporary files are removed first.
void removeTemporaryFilesOnSignals();

/// While one lives, signals that would end the process wait.
class SignalPause {
public:
    SignalPause();
    ~SignalPause();
    SignalPause(const SignalPause&) = delete;
    SignalPause& operator=(const SignalPause&) = delete;
};

/// A new, empty file of a name that nobody else has, readable by its owner alone. It is removed at
/// the end unless it was moved to its place.
class TemporaryFile {
public:
    /// A file in a folder; nothing when the system refuses, `errno` telling why.
    static std::optional<TemporaryFile> inFolder(const std::string& folder);
    /// A file where the system keeps such files.
    static std::optional<TemporaryFile> anywhere();
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&& other) = delete;
    TemporaryFile(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string& path() const { return path_; }
    /// The open file, for writing; -1 once it was closed.
    [[nodiscard]] int file() const { return file_; }
    void close();
    /// Renames it over `target`, in the same folder. False, `errno` telling why, when that fails.
    bool moveTo(const std::string& target);

private:
    TemporaryFile(std::string path, int file) : path_{std::move(path)}, file_{file} {}

    std::string path_; // empty when there is nothing to remove
    int file_ = -1;
};
