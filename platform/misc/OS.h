#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <cstddef>

namespace Tarn {

/// What the module asks of the operating system.
class TARN_API OperatingSystem {
public:
    /// Resizes a block from an earlier call (null: a new one) and returns it, perhaps moved;
    /// contents stay. 0 bytes frees it and returns null. Throws std::bad_alloc, leaving the old
    /// block as it was.
    void* reallocate(void* block, std::size_t bytes);
    /// Removes a file, not a folder; false when that fails, also when there is none.
    bool removeFile(const LightweightString<wchar_t>& path) noexcept;
    /// Whether a regular file stands at the path, or where a link there leads to. Throws
    /// std::bad_alloc rather than answer without having looked.
    bool isRegularFile(const LightweightString<wchar_t>& path);
    /// Gives a file the permissions of another, and its owner where the system lets us; false when
    /// that fails. Throws std::bad_alloc.
    bool copyPermissions(const LightweightString<wchar_t>& from,
                         const LightweightString<wchar_t>& to);
    /// Moves a file within a file system; false when that fails. With `replace` 0 an existing file
    /// at `to` is left alone and the result is false; otherwise it is replaced in one step.
    bool moveFile(const LightweightString<wchar_t>& from, const LightweightString<wchar_t>& to,
                  int replace) noexcept;
};

} // namespace Tarn

/// The one operating system object.
TARN_API Tarn::OperatingSystem& OS() noexcept;
