#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace Tarn {

/// A line being put together, in memory that is used again for the next one. Who writes many short
/// pieces asks for room once and fills it by hand.
class LineBuffer {
public:
    void clear() noexcept { used_ = 0; }
    [[nodiscard]] std::string_view view() const noexcept { return {bytes_.get(), used_}; }

    /// A place for at least n more bytes, good until the next call. Amortised linear. Throws
    /// std::bad_alloc, with the line as it was, when there is no memory.
    char* roomFor(std::size_t n) {
        if (!bytes_ || n > size_ - used_) {
            grow(n);
        }
        return bytes_.get() + used_;
    }
    /// Takes what was written at the place that `roomFor` gave, up to `end`.
    void takeUpTo(const char* end) noexcept {
        used_ = static_cast<std::size_t>(end - bytes_.get());
    }

    void append(char c) {
        *roomFor(1) = c;
        ++used_;
    }
    void append(std::string_view text) {
        char* const to = roomFor(text.size());
        if (!text.empty()) {
            std::memcpy(to, text.data(), text.size());
        }
        used_ += text.size();
    }

private:
    void grow(std::size_t n) {
        const std::size_t size = std::max(used_ + n, 2 * size_);
        std::unique_ptr<char[]> bytes{new char[size]};
        if (used_ != 0) {
            std::memcpy(bytes.get(), bytes_.get(), used_);
        }
        bytes_ = std::move(bytes);
        size_ = size;
    }

    std::unique_ptr<char[]> bytes_;
    std::size_t used_ = 0;
    std::size_t size_ = 0;
};

} // namespace Tarn
