#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A text file in memory: a list of lines with a current line, read whole and written whole.
///
/// Loading keeps the file in one buffer, the lines are slices of it. Bytes are passed through as
/// they are; zero bytes and a byte order mark stay in their line. Cost is linear in the file's
/// size.
class TARN_API TextFile {
public:
    /// Line ends for `save`.
    enum eEOLStyle : int { eEOLStyleLF = 0, eEOLStyleCRLF = 1, eEOLStyleCR = 2 };

    /// No lines, no path, position 0.
    TextFile();
    /// Bound to `path`. With `loadNow` the file is loaded as by `load(path, '\n', true)`; a file
    /// that cannot be read leaves no lines.
    TextFile(const LightweightString<wchar_t>& path, bool loadNow);
    ~TextFile();
    TextFile(TextFile&&) noexcept;
    TextFile& operator=(TextFile&&) noexcept;
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    /// Replaces the contents by the file's lines and goes to the first. Lines end at `terminator`;
    /// one CR directly before it, or at the end of the file, is dropped (with either value of
    /// `convert`). A final terminator makes no extra line. Returns false, with no lines, for a file
    /// that does not exist, is a directory or cannot be read. Remembers `path` for `save`.
    bool load(const LightweightString<wchar_t>& path, char terminator, bool convert);

    [[nodiscard]] unsigned numLines() const noexcept;
    /// Line i without its end; a null string beyond the last line.
    [[nodiscard]] LightweightString<char> operator[](unsigned i) const;
    /// Line i as a slice, good until the file is changed, loaded or destroyed; empty beyond the
    /// last line.
    [[nodiscard]] std::string_view lineView(unsigned i) const noexcept;

    /// The current line's number, from 0; `numLines()` at the end.
    [[nodiscard]] unsigned line() const noexcept { return current_; }
    void setLine(unsigned n) noexcept;
    [[nodiscard]] bool atEnd() const noexcept { return current_ >= numLines(); }
    /// The current line as a slice; goes on to the next line. Empty, without moving, at the end.
    std::string_view nextLine() noexcept;

    /// Appends a line, bytes as given.
    void appendLine(std::string_view text);
    void appendLine(const LightweightString<char>& text) { appendLine(text.view()); }

    /// From now on appended lines go to the file system as they come, in large pieces, and are not
    /// kept: for files too long to hold. Nothing is visible at `path` until `save` with the same
    /// path and style ends the file. Lines appended before are written first. A failure shows in
    /// the result of `save`.
    void stream(const LightweightString<wchar_t>& path, eEOLStyle style);

    /// Writes all lines, each with its line end, and returns whether that succeeded. An empty path
    /// means the path given at construction or loading; without one the save fails. A regular file
    /// is replaced whole or not at all: a sibling is written, flushed to disk and renamed over it;
    /// the permissions of an existing file stay. Symbolic links are followed; devices and pipes are
    /// written directly.
    bool save(const LightweightString<wchar_t>& path, eEOLStyle style);

private:
    class Output;

    std::string buffer_;
    std::vector<std::size_t> starts_; // where each line starts, then the end of the buffer
    std::vector<std::size_t> ends_;
    unsigned current_ = 0;
    LightweightString<wchar_t> path_;
    std::unique_ptr<Output> output_;
};
