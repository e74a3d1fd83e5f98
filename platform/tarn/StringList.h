#pragma once

#include "tarn/Array.h"
#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <utility>

/// An element that holds one text.
class TARN_API StringRec : public ArrayRec {
public:
    StringRec() = default;
    /// Shares the text.
    explicit StringRec(LightweightString<char> text) : text_{std::move(text)} {}
    ~StringRec() override;

    /// As `strcmp` of the two texts, null as "". Another class of element orders by address.
    [[nodiscard]] int compare(const ArrayRec& other) const override;
    void printOn(GrowString& out) const override;
    /// The text.
    [[nodiscard]] const LightweightString<char>& string() const noexcept { return text_; }

private:
    LightweightString<char> text_;
};

/// A list of texts.
class TARN_API StringList : public Array {
public:
    ~StringList() override;
    /// Text of element i, "" out of range; good while the element lives.
    [[nodiscard]] const char* text(unsigned i) const noexcept;
};
