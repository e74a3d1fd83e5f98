#pragma once

#include "tarn/export.h"
#include "tarn/LightweightString.h"

#include <string_view>
#include <utility>
#include <vector>

/// Names with text values, in the order in which the names were first set. Names compare ignoring
/// case; the first spelling is kept. Looking up is linear in the number of names and never adds
/// one.
class TARN_API AssocList {
public:
    /// A name and its value.
    using Entry = std::pair<LightweightString<char>, LightweightString<char>>;

    /// Sets the value of a name, adding the name at the end where it is new.
    void set(const LightweightString<char>& name, const LightweightString<char>& value);
    /// The value of a name, null when the name is not there; good until the list is changed.
    [[nodiscard]] const LightweightString<char>* find(std::string_view name) const noexcept;
    /// The number of names.
    [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
    /// Entry i, which must be below `size()`; good until the list is changed.
    [[nodiscard]] const Entry& operator[](std::size_t i) const noexcept { return entries_[i]; }
    /// Takes all names out.
    void clear() noexcept { entries_.clear(); }

private:
    std::vector<Entry> entries_;
};
