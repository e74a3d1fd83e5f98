#pragma once

#include "tarn/ArrayRec.h"
#include "tarn/export.h"

#include <memory>
#include <vector>

/// A growable list that owns its elements.
class TARN_API Array {
public:
    Array();
    virtual ~Array();
    Array(const Array&) = delete;
    Array& operator=(const Array&) = delete;

    /// Takes ownership of an element; null is ignored.
    void append(ArrayRec* element);
    /// The number of elements.
    [[nodiscard]] unsigned count() const noexcept {
        return static_cast<unsigned>(elements_.size());
    }
    /// Element i, owned by the list; null out of range.
    [[nodiscard]] const ArrayRec* at(unsigned i) const noexcept;
    /// Deletes all elements.
    void clear() noexcept;

private:
    std::vector<std::unique_ptr<ArrayRec>> elements_;
};
