#pragma once

#include "tarn/systemFile.h"

#include <string>
#include <string_view>
#include <sys/types.h>

struct stat;

namespace Tarn {

/// New contents for a file, which come into place whole or not at all.
///
/// Until `commit` they stand in a sibling, a file of another name in the same folder; `commit`
/// renames it over the target. A symbolic link stays, and what it points at is replaced or made.
/// Devices and pipes cannot be replaced: they are written directly.
class FileReplacement {
public:
    /// Opens the way to `path`; a failure shows in `commit`. With `flush`, `commit` waits until the
    /// disk holds the file.
    FileReplacement(const char* path, bool flush);
    /// Removes the sibling of a replacement that was not committed.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Writes on; does nothing after a failure.
    void write(std::string_view bytes) noexcept;
    /// Puts the contents in place. False, with the target as it was, when anything failed so far.
    /// Where only the flush of the folder fails, false with the new file in place. Call once.
    bool commit() noexcept;

private:
    bool open(const char* path);
    bool openExisting(const char* path, const struct stat& status);
    bool openSibling(mode_t mode);
    void setTarget(std::string target);
    bool putInPlace() noexcept;

    bool flush_;
    std::string target_;
    std::string folder_;  // that of the target
    std::string sibling_; // empty when the target is written directly
    FileDescriptor file_;
    bool ok_; // after the others, which the opening fills
};

} // namespace Tarn
