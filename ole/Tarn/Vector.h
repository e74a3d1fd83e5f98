#pragma once

#include "misc/diagnostics.h"

#include <utility>
#include <vector>

/// A growable list whose read access is checked: an index past the end is reported on the console
/// and gives a default value, so that a bad file cannot make the module read outside memory.
template <class T>
class Vector {
public:
    /// Adds an element at the end.
    void append(T value) { items_.push_back(std::move(value)); }
    /// The number of elements.
    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(items_.size()); }

    /// A copy of element i; past the end a default value, which is reported.
    [[nodiscard]] T operator[](unsigned i) const {
        if (i < items_.size()) {
            return items_[i];
        }
        Tarn::reportFailedCheckOnConsole("i < size_", "ole/Tarn/Vector line 61");
        return T{};
    }

private:
    std::vector<T> items_;
};
