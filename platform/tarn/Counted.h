#pragma once

#include "tarn/export.h"

#include <atomic>

namespace Tarn {

/// Base of objects that are shared by count; the last `release` deletes the object. A copy starts
/// with a count of its own.
class TARN_API Counted {
public:
    Counted() noexcept = default;
    ///@{
    /// Leave both counts as they are.
    Counted(const Counted&) noexcept {}
    Counted& operator=(const Counted&) noexcept { return *this; }
    ///@}
    virtual ~Counted();

    /// Takes one count. Any thread may call it.
    void addRef() const noexcept { ++count_; }
    /// Gives one count back; deletes the object with the last. Any thread may call it.
    void release() const noexcept {
        if (--count_ == 0) {
            delete this;
        }
    }

private:
    mutable std::atomic<int> count_{0};
};

} // namespace Tarn
