#pragma once

#include <cstddef>
#include <string_view>
#include <sys/types.h>

// The system's file calls as the text files need them: repeated when a signal interrupts them, and
// going on after a part.

struct stat;

namespace Tarn {

/// An open file of the system, closed at the end.
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int number) noexcept : number_{number} {}
    FileDescriptor(FileDescriptor&& other) noexcept;
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    ~FileDescriptor();

    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
    [[nodiscard]] int get() const noexcept { return number_; }
    /// False when nothing is open or the system reports a late failure of writing.
    bool close() noexcept;

private:
    int number_ = -1;
};

/// Opens a file; see `open` of the system for the flags, the mode and the reason of a failure.
FileDescriptor openFile(const char* path, int flags, mode_t mode = 0) noexcept;

/// Reads at most `size` bytes; 0 at the end, negative when the file cannot be read.
ssize_t readSome(int file, char* to, std::size_t size) noexcept;

bool writeWhole(int file, std::string_view bytes) noexcept;

/// Waits until the disk holds the file. What cannot be flushed, such as a pipe, counts as flushed.
bool flushFile(int file) noexcept;

/// The same for a folder. One that may be written but not read counts as flushed.
bool flushFolder(const char* path) noexcept;

/// Gives a file the owner, where the system lets us, and the permissions of another.
bool copyPermissions(int file, const struct stat& other) noexcept;

} // namespace Tarn
