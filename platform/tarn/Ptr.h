#pragma once

#include <cstddef>
#include <utility>

namespace Tarn {

/// Pointer that shares a counted object (a class derived from `Counted`).
template <class T>
class Ptr {
public:
    ///@{
    /// Points at nothing.
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    ///@}
    /// Takes a count of the object, which is then owned by its pointers; null points at nothing.
    explicit Ptr(T* object) noexcept : object_{object} { hold(); }
    ///@{
    /// Share the object, or take over the other's share.
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
    ///@}
    /// Gives the count back; the last deletes the object.
    ~Ptr() {
        if (object_) {
            object_->release();
        }
    }

    /// The object, null for none; good while a pointer holds it.
    [[nodiscard]] T* get() const noexcept { return object_; }
    ///@{
    /// The object, which must be there.
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    ///@}
    /// Whether there is an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// Gives the object back early; points at nothing then.
    void reset() noexcept { *this = Ptr{}; }
    /// Whether both point at the same object.
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
