// Deletions put together. Two stretches of them join like sorted lists: the numbers of the later
// one grow by the rows of the earlier one that lie in front of them.

#include "ole/oledb/DeletedRows.h"

#include "tarn/NotifyMsgTokenIterator.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <new>

namespace {

using Piece = DeletedRows::Piece;
using Pieces = DeletedRows::Pieces;

void push(Pieces& pieces, std::int64_t first, std::int64_t n, unsigned deletion) {
    const std::int64_t before = pieces.empty() ? 0 : pieces.back().before + pieces.back().n;
    pieces.push_back({first, n, before, deletion});
}

Pieces joined(const Pieces& earlier, const Pieces& later) {
    Pieces all;
    all.reserve(2 * earlier.size() + later.size());
    auto next = earlier.begin();
    std::int64_t gone = 0; // rows of the earlier ones in front of the row that is looked at
    for (const Piece& piece : later) {
        for (std::int64_t row = piece.first; row < piece.end();) {
            for (; next != earlier.end() && next->first - gone <= row; ++next) {
                push(all, next->first, next->n, next->deletion);
                gone += next->n;
            }
            const std::int64_t end =
                next == earlier.end() ? piece.end() : std::min(piece.end(), next->first - gone);
            push(all, row + gone, end - row, piece.deletion);
            row = end;
        }
    }
    for (; next != earlier.end(); ++next) {
        push(all, next->first, next->n, next->deletion);
    }
    return all;
}

} // namespace

bool DeletedRows::add(const NotifyMsg& msg) {
    const std::size_t known = runs_.size();
    try {
        int earlier = 0;
        for (NotifyMsgTokenIterator token{msg}; token.valid(); ++token, ++earlier) {
            const std::int64_t row = std::int64_t{token.number()} - earlier;
            if (row < INT_MIN) {
                runs_.resize(known);
                return false;
            }
            if (runs_.size() > known && runs_.back().first == row) {
                ++runs_.back().n;
            } else {
                runs_.push_back({static_cast<int>(row), 1});
            }
        }
        return true;
    } catch (const std::bad_alloc&) {
        runs_.resize(known);
        return false;
    }
}

bool DeletedRows::rises(std::size_t from, std::size_t to) const {
    for (std::size_t i = from + 1; i < to; ++i) {
        if (runs_[i].first < runs_[i - 1].first) {
            return false;
        }
    }
    return true;
}

Pieces DeletedRows::piecesOf(std::size_t from, std::size_t to) const {
    if (!rises(from, to)) {
        const std::size_t middle = from + (to - from) / 2;
        return joined(piecesOf(from, middle), piecesOf(middle, to));
    }
    Pieces pieces;
    pieces.reserve(to - from);
    std::int64_t gone = 0;
    for (std::size_t i = from; i < to; ++i) {
        push(pieces, runs_[i].first + gone, runs_[i].n, static_cast<unsigned>(i));
        gone += runs_[i].n;
    }
    return pieces;
}

Pieces DeletedRows::pieces() const {
    return piecesOf(0, runs_.size());
}

void PieceFinder::goTo(std::int64_t row) noexcept {
    if (!endsBehind(next_, row)) {
        ++next_;
    }
    if (!endsBehind(next_, row) || (next_ != 0 && endsBehind(next_ - 1, row))) {
        const auto found =
            std::partition_point(pieces_.begin(), pieces_.end(),
                                 [row](const Piece& piece) { return piece.end() <= row; });
        next_ = static_cast<std::size_t>(found - pieces_.begin());
    }
    const Piece* const last = next_ == 0 ? nullptr : &pieces_[next_ - 1];
    const Piece* const next = next_ == pieces_.size() ? nullptr : &pieces_[next_];
    piece_ = next && next->first <= row ? next : nullptr;
    before_ = last ? last->before + last->n : 0;
    low_ = piece_ ? piece_->first : last ? last->end() : std::numeric_limits<std::int64_t>::min();
    high_ = piece_ ? piece_->end() : next ? next->first : std::numeric_limits<std::int64_t>::max();
}
