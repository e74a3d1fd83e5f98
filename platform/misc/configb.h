#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <map>
#include <utility>

/// A text value of a configuration block.
class TARN_API strp_field {
public:
    strp_field() = default;
    /// Shares the text.
    explicit strp_field(LightweightString<char> text) : text_{std::move(text)} {}
    /// The text.
    [[nodiscard]] const LightweightString<char>& string() const noexcept { return text_; }

private:
    LightweightString<char> text_;
};

/// A block of keys with text values, into which a row exports itself.
class TARN_API configb {
public:
    /// The values by key, in the order of the keys' bytes.
    using Map = std::map<LightweightString<char>, strp_field>;

    /// Sets a value; a later one of the same key replaces it.
    void set(const char* key, const strp_field& value);
    /// The value of a key, null when there is none; good until the key is set again.
    [[nodiscard]] const strp_field* get(const char* key) const;
    /// The number of keys.
    [[nodiscard]] std::size_t count() const noexcept { return values_.size(); }
    ///@{
    /// Every key with its value, in the order of the keys.
    [[nodiscard]] Map::const_iterator begin() const noexcept { return values_.begin(); }
    [[nodiscard]] Map::const_iterator end() const noexcept { return values_.end(); }
    ///@}

private:
    Map values_;
};
