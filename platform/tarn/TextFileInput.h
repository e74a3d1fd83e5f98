#pragma once

#include "tarn/systemFile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Tarn {

/// Lines on their way out of a file: read in large pieces, handed out one by one. Takes the memory
/// of a piece, or of twice the longest line, however long the file is. Reports its progress to the
/// watchdog where the file's size is known.
class TextFileInput {
public:
    /// Lines end at `terminator`; one CR before it, or at the end of the file, is dropped.
    TextFileInput(const char* path, char terminator);

    /// Whether no line is left.
    [[nodiscard]] bool atEnd();
    /// The next line, good until the next call; empty at the end. Throws std::bad_alloc for a line
    /// that is longer than memory.
    [[nodiscard]] std::string_view nextLine();

    /// Whether the file could not be opened, or not be read to its end.
    [[nodiscard]] bool failed() const noexcept { return failed_; }

private:
    [[nodiscard]] std::string_view ahead() const noexcept {
        return {bytes_.data() + from_, to_ - from_};
    }
    void makeRoom();
    bool readMore();

    FileDescriptor file_;
    char terminator_;
    bool failed_;
    bool ended_;             // nothing more will come from the file
    std::uint64_t size_ = 0; // of a regular file; 0 where it is not known
    std::uint64_t read_ = 0;
    std::vector<char> bytes_;
    std::size_t from_ = 0; // what was read and not handed out
    std::size_t to_ = 0;
};

} // namespace Tarn
