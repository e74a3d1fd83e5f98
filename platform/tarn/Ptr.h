#pragma once

#include <cstddef>
#include <utility>

namespace Tarn {

/// Pointer that shares a counted object (a class derived from `Counted`).
template <class T>
class Ptr {
public:
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* object) noexcept : object_{object} { hold(); }
    Ptr(const Ptr& other) noexcept : object_{other.object_} { hold(); }
    Ptr(Ptr&& other) noexcept : object_{std::exchange(other.object_, nullptr)} {}
    template <class U>
    Ptr(const Ptr<U>& other) noexcept : object_{other.get()} {
        hold();
    }
    Ptr& operator=(Ptr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ptr() {
        if (object_) {
            object_->release();
        }
    }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    void reset() noexcept { *this = Ptr{}; }
    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.object_ == b.object_; }

private:
    void hold() const noexcept {
        if (object_) {
            object_->addRef();
        }
    }
    T* object_ = nullptr;
};

} // namespace Tarn
