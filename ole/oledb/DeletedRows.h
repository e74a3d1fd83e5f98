#pragma once

#include <cstdint>
#include <vector>

class NotifyMsg;

/// Deletions of rows that a view has heard of, in their order, each in the numbering that the one
/// before left behind; and all of them in the numbering before the first.
///
/// A message of the numbers t0, t1, ... reads as: row t0 goes and those behind it sink by one; then
/// row t1 - 1, then row t2 - 2. So messages of any kind follow one another as single deletions do,
/// and neighbouring rows of one message are one number, that many times.
class DeletedRows {
public:
    /// Rows that went in one piece, in the numbering before the first deletion.
    struct Piece {
        std::int64_t first;
        std::int64_t n;
        std::int64_t before; ///< how many rows in front of it went, at any time
        unsigned deletion;   ///< its place in the order of deletions
        [[nodiscard]] std::int64_t end() const noexcept { return first + n; }
    };
    using Pieces = std::vector<Piece>; ///< by rising rows

    [[nodiscard]] bool empty() const noexcept { return runs_.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return runs_.size(); }
    /// Adds a message's deletions. False, with nothing added, for numbers so low that rows would
    /// leave the range of numbers, and where memory runs out.
    bool add(const NotifyMsg& msg);
    /// Linear while deletions move towards higher rows, n log n in any order.
    [[nodiscard]] Pieces pieces() const;

    /// Row `first`, so many times.
    struct Run {
        int first;
        int n;
    };
    [[nodiscard]] const std::vector<Run>& runs() const noexcept { return runs_; }

private:
    [[nodiscard]] Pieces piecesOf(std::size_t from, std::size_t to) const;
    [[nodiscard]] bool rises(std::size_t from, std::size_t to) const;

    std::vector<Run> runs_;
};

/// Finds the piece of a row, fast where the next row asked for lies in the same stretch or in the
/// one behind it.
class PieceFinder {
public:
    explicit PieceFinder(const DeletedRows::Pieces& pieces) noexcept : pieces_{pieces} {}

    /// The piece that the row is in; null where it stays.
    const DeletedRows::Piece* find(std::int64_t row) noexcept {
        if (row < low_ || row >= high_) {
            goTo(row);
        }
        return piece_;
    }
    /// How many rows went in front of the row that `find` was asked for last, where it stays.
    [[nodiscard]] std::int64_t before() const noexcept { return before_; }

private:
    [[nodiscard]] bool endsBehind(std::size_t piece, std::int64_t row) const noexcept {
        return piece == pieces_.size() || row < pieces_[piece].end();
    }
    void goTo(std::int64_t row) noexcept;

    const DeletedRows::Pieces& pieces_;
    std::size_t next_ = 0; ///< the first that ends behind the row
    std::int64_t low_ = 0; ///< rows from here to `high_` are in the same piece, or stay alike
    std::int64_t high_ = 0;
    const DeletedRows::Piece* piece_ = nullptr;
    std::int64_t before_ = 0;
};
