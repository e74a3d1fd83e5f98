// The owning list and the base of its elements.

#include "tarn/Array.h"

#include <functional>

ArrayRec::~ArrayRec() = default;

int ArrayRec::compare(const ArrayRec& other) const {
    return compareAddress(other);
}

int ArrayRec::compareAddress(const ArrayRec& other) const noexcept {
    if (this == &other) {
        return 0;
    }
    return std::less<>{}(this, &other) ? -1 : 1;
}

Array::Array() = default;
Array::~Array() = default;

void Array::append(ArrayRec* element) {
    std::unique_ptr<ArrayRec> owned{element};
    if (owned) {
        elements_.push_back(std::move(owned));
    }
}

const ArrayRec* Array::at(unsigned i) const noexcept {
    return i < elements_.size() ? elements_[i].get() : nullptr;
}

void Array::clear() noexcept {
    elements_.clear();
}
