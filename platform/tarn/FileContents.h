#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

namespace Tarn {

/// The bytes of a file in memory.
class FileContents {
public:
    FileContents() noexcept = default;
    FileContents(FileContents&& other) noexcept { swap(other); }
    FileContents& operator=(FileContents&& other) noexcept {
        FileContents taken{std::move(other)};
        swap(taken);
        return *this;
    }
    FileContents(const FileContents&) = delete;
    FileContents& operator=(const FileContents&) = delete;
    ~FileContents();

    [[nodiscard]] std::string_view view() const noexcept { return {bytes_, used_}; }
    void swap(FileContents& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(used_, other.used_);
        std::swap(size_, other.size_);
    }

    /// Reads everything up to the end of a file, pipe or device; false, with no contents, when it
    /// cannot be opened or read. One allocation for a regular file. Throws std::bad_alloc.
    bool read(const char* path);

private:
    bool readAll(int file);
    void grow(std::size_t size);

    char* bytes_ = nullptr;
    std::size_t used_ = 0;
    std::size_t size_ = 0;
};

} // namespace Tarn
