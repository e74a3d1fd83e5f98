#pragma once

#include "tarn/BlockMemory.h"
#include "tarn/LightweightString.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

/// The values of a row: an array of strings whose length changes rarely, in memory that rows share.
class ValueSlots {
public:
    using Value = LightweightString<char>;

    explicit ValueSlots(std::size_t n) : values_{take(n)}, size_{n} {
        std::uninitialized_value_construct_n(values_, n);
    }
    /// As many as n of another row's values, null strings for the rest.
    ValueSlots(const ValueSlots& other, std::size_t n) : ValueSlots{n} {
        std::copy_n(other.values_, std::min(n, other.size_), values_);
    }
    ValueSlots(const ValueSlots&) = delete;
    ValueSlots& operator=(const ValueSlots&) = delete;
    ~ValueSlots() {
        std::destroy_n(values_, size_);
        Tarn::BlockMemory::release(values_, size_ * sizeof(Value));
    }

    void swap(ValueSlots& other) noexcept {
        std::swap(values_, other.values_);
        std::swap(size_, other.size_);
    }

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] Value& operator[](std::size_t i) noexcept { return values_[i]; }
    [[nodiscard]] const Value& operator[](std::size_t i) const noexcept { return values_[i]; }
    [[nodiscard]] Value* begin() noexcept { return values_; }
    [[nodiscard]] Value* end() noexcept { return values_ + size_; }
    [[nodiscard]] const Value* begin() const noexcept { return values_; }
    [[nodiscard]] const Value* end() const noexcept { return values_ + size_; }

private:
    static Value* take(std::size_t n) {
        return n == 0 ? nullptr
                      : static_cast<Value*>(Tarn::BlockMemory::allocate(n * sizeof(Value)));
    }

    Value* values_;
    std::size_t size_;
};
