#pragma once

#include "tarn/export.h"

class GrowString;

/// Element of an `Array`.
class TARN_API ArrayRec {
public:
    virtual ~ArrayRec();
    /// Negative, zero or positive. Elements of different classes order by address.
    [[nodiscard]] virtual int compare(const ArrayRec& other) const;
    /// Whether `compare` gives 0.
    [[nodiscard]] bool operator==(const ArrayRec& other) const { return compare(other) == 0; }
    /// Appends a text form of the element.
    virtual void printOn(GrowString& out) const = 0;

protected:
    /// The fallback order.
    [[nodiscard]] int compareAddress(const ArrayRec& other) const noexcept;
};
