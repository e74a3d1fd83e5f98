#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// The numbers of rows while rows in front of them are taken away one after the other. Each step is
/// logarithmic in the rows. Source: P. M. Fenwick, "A new data structure for cumulative frequency
/// tables", 1994.
class SinkingRows {
public:
    explicit SinkingRows(std::size_t rows) : gone_(rows + 1) {}

    /// Takes a row away; `row` is its number before the first one went.
    void takeAway(std::size_t row) noexcept {
        for (std::size_t i = row + 1; i < gone_.size(); i += i & (~i + 1)) {
            ++gone_[i];
        }
    }
    /// The number that a row has after what went.
    [[nodiscard]] std::uint32_t now(std::size_t row) const noexcept {
        auto number = static_cast<std::uint32_t>(row);
        for (std::size_t i = row; i != 0; i &= i - 1) {
            number -= gone_[i];
        }
        return number;
    }

private:
    std::vector<std::uint32_t> gone_; ///< of the rows that a place stands for
};
