#pragma once

#include "tarn/export.h"
#include "tarn/FileContents.h"
#include "tarn/LightweightString.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tarn {
class TextFileInput;
}

/// A text file: a list of lines with a current line, read whole and written whole; or a stream of
/// lines that are not kept (`streamFrom`, `stream`).
///
/// Loading keeps the file in one buffer, the lines are slices of it. Bytes are passed through as
/// they are; zero bytes and a byte order mark stay in their line. Lines are numbered in 32 bits:
/// more of them in memory than that count as memory run out. Cost is linear in the file's
/// size. Files that cannot be opened, read or written are told by results; only std::bad_alloc is
/// thrown.
class TARN_API TextFile {
public:
    /// Line ends for `save`.
    enum eEOLStyle : int { eEOLStyleLF = 0, eEOLStyleCRLF = 1, eEOLStyleCR = 2 };

    /// No lines, no path, position 0.
    TextFile();
    /// Bound to `path`. With `loadNow` the file is loaded as by `load(path, '\n', true)`; a file
    /// that cannot be read leaves no lines.
    TextFile(const LightweightString<wchar_t>& path, bool loadNow);
    /// What was streamed without a `save` is thrown away.
    ~TextFile();
    ///@{
    /// Leaves `other` as a new text file is: without lines and path.
    TextFile(TextFile&& other) noexcept;
    TextFile& operator=(TextFile&& other) noexcept;
    ///@}
    TextFile(const TextFile&) = delete;
    TextFile& operator=(const TextFile&) = delete;

    /// Replaces the contents by the file's lines and goes to the first. Lines end at `terminator`;
    /// one CR directly before it, or at the end of the file, is dropped (with either value of
    /// `convert`). A final terminator makes no extra line. Pipes and devices are read to their end.
    /// Returns false, with no lines, for a file that does not exist, is a directory or cannot be
    /// read. Remembers `path` for `save`, also then. Ends streaming as the destructor does.
    bool load(const LightweightString<wchar_t>& path, char terminator, bool convert);

    /// From now on `nextLine` brings the lines of this file, cut as by `load`, which are not kept:
    /// for files too long to hold, and faster for large ones that are read once. They are not
    /// numbered: `numLines()` and `line()` stay 0. Replaces the contents, and remembers `path`, as
    /// `load` does; false, with nothing to read, when the file cannot be opened. Ends with `load`,
    /// `stream` or a further `streamFrom`; until then `save` fails, because there is no whole.
    bool streamFrom(const LightweightString<wchar_t>& path, char terminator);
    /// Whether the file of `streamFrom` could not be opened, or not be read up to where `atEnd()`
    /// is true; what came before is then a part of it at best. False without one.
    [[nodiscard]] bool streamFailed() const noexcept;

    /// Number of lines in memory; streamed lines do not count.
    [[nodiscard]] unsigned numLines() const noexcept {
        return static_cast<unsigned>(starts_.size());
    }
    /// Line i without its end; a null string beyond the last line.
    [[nodiscard]] LightweightString<char> operator[](unsigned i) const;
    /// Line i as a slice, good until the file is changed, loaded or destroyed; empty beyond the
    /// last line.
    [[nodiscard]] std::string_view lineView(unsigned i) const noexcept;

    /// The current line's number, from 0; `numLines()` at the end.
    [[nodiscard]] unsigned line() const noexcept { return current_; }
    /// Goes to line n, or to the end where there is none.
    void setLine(unsigned n) noexcept;
    /// Whether `nextLine` has brought the last line.
    [[nodiscard]] bool atEnd() const;
    /// The current line as a slice; goes on to the next line. Empty, without moving, at the end.
    /// A line of `streamFrom` is good until the next call.
    std::string_view nextLine();

    ///@{
    /// Appends a line, bytes as given; a null pointer appends an empty line. Amortised linear in
    /// the line's length.
    void appendLine(std::string_view text);
    void appendLine(const LightweightString<char>& text) { appendLine(text.view()); }
    void appendLine(const char* text) {
        appendLine(text ? std::string_view{text} : std::string_view{});
    }
    ///@}

    /// From now on appended lines go to the file system as they come, in large pieces, and are not
    /// kept: for files too long to hold. Lines appended before are written first and leave memory.
    /// Nothing is visible at `path` until `save` with the same path and style ends the file (a pipe
    /// or a device gets its lines as they come). An empty path means the path given at construction
    /// or loading. A failure shows in the result of `save`. Lines that were streamed and not saved
    /// are dropped by a further call.
    void stream(const LightweightString<wchar_t>& path, eEOLStyle style);

    /// Writes all lines, each with its line end, and returns whether that succeeded; it fails while
    /// the lines of `streamFrom` come. An empty path means the path given at construction or
    /// loading; without one the save fails. A regular file is replaced whole or not at all: a
    /// sibling is written, flushed to disk and renamed over it; the permissions of an existing file
    /// stay; other hard links to it keep the old contents. Symbolic links are followed; devices and
    /// pipes are written directly. A file without write permission is not replaced. Should the
    /// flush of the folder fail, after the renaming, the result is false and the new file stands.
    ///
    /// Ends streaming: with another path or style than `stream` was given, the save fails; either
    /// way the lines streamed are gone from here, and the text file is empty.
    bool save(const LightweightString<wchar_t>& path, eEOLStyle style);

    /// Whether saves in this process wait until the disk holds the file (the default). Without,
    /// saving is faster, a failed save still leaves the old file, but a power cut may leave an
    /// empty or a cut one. Any thread may call it; saves that begin later follow it.
    static void setFlushToDisk(bool flush) noexcept;

private:
    class Output;

    void swap(TextFile& other) noexcept;
    void clear() noexcept;
    void startLine(std::size_t start);
    void cutLines(char terminator);
    [[nodiscard]] std::string_view loadedLine(std::string_view withEnd) const noexcept;
    [[nodiscard]] const LightweightString<wchar_t>&
    pathOrBound(const LightweightString<wchar_t>& path) const noexcept;
    void writeLines(Output& output) const;

    // The loaded lines come first and hold their ends, the appended ones do not. A start is counted
    // from the beginning of its own store.
    Tarn::FileContents loaded_;
    std::string appended_;
    std::vector<std::size_t> starts_;
    std::size_t loadedLines_ = 0;
    char terminator_ = '\n';
    unsigned current_ = 0;
    LightweightString<wchar_t> path_;
    std::unique_ptr<Output> output_;
    std::unique_ptr<Tarn::TextFileInput> input_;
};
