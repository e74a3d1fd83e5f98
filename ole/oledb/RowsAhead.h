#pragma once

#include "ole/oledb/dbrecord.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

/// Asks for the memory of the records that come next, and of their values: each step on the way to
/// a text waits for the memory otherwise. `recordAt` gives the record at a position, null for none.
template <class RecordAt>
class RowsAhead {
public:
    /// The fields must outlive the object.
    RowsAhead(std::size_t rows, std::span<const int> fields, RecordAt recordAt)
        : rows_{rows}, fields_{fields}, recordAt_{recordAt} {}

    void reach(std::size_t at) {
        if (at + 3 * step >= rows_) {
            return;
        }
        const dbrecord* const later = recordAt_(at + 3 * step);
        __builtin_prefetch(later);
        if (fields_.size() > few && standsBehind(std::exchange(last_, later), later)) {
            return;
        }
        const dbrecord* const soon = recordAt_(at + 2 * step);
        const dbrecord* const next = recordAt_(at + step);
        if (soon && next) {
            for (const int field : fields_) {
                __builtin_prefetch(&valueOf(*soon, field));
                __builtin_prefetch(valueOf(*next, field).c_str());
            }
        }
    }

private:
    static constexpr std::size_t step = 8;
    static constexpr std::size_t few = 4; // fields

    /// Of rows in the order in which they came into memory, the processor sees most values coming
    /// by itself; asking for each would cost more than it brings.
    static bool standsBehind(const dbrecord* before, const dbrecord* later) noexcept {
        constexpr std::uintptr_t near = 512;
        return reinterpret_cast<std::uintptr_t>(later) - reinterpret_cast<std::uintptr_t>(before) <
               near;
    }

    static const LightweightString<char>& valueOf(const dbrecord& record, int field) {
        return record.getField(static_cast<unsigned short>(field));
    }

    std::size_t rows_;
    std::span<const int> fields_;
    RecordAt recordAt_;
    const dbrecord* last_ = nullptr;
};
