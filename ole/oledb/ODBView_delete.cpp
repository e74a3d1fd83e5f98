// Taking entries out of a view, and deleting the rows that it shows.
//
// Both call listeners, which may change this view or take its last handle: counts and rows are
// asked for anew after each call, and the view is kept alive until the operation ends.

#include "ole/oledb/messageTypes.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/rowNumbers.h"
#include "ole/oledb/SinkingRows.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/NotifyMsg.h"

#include <algorithm>
#include <climits>
#include <new>
#include <optional>
#include <span>
#include <utility>
#include <vector>

// -- removal --

void ODBViewRep::remove(int from, int n) {
    if (from < 0 || from >= count() || n < 0) {
        return;
    }
    issueNotification(takeOut(from, std::min(n, index.numIndex() - from)), recordsDeletedType());
}

/// Takes entries out and gives the message of it, which is to be issued.
NotifyMsg ODBViewRep::takeOut(int from, int n) {
    NotifyMsg msg =
        hasListeners(recordsDeletedType())
            ? NotifyMsg{rowNumbers(static_cast<unsigned>(from), static_cast<unsigned>(n))}
            : NotifyMsg{};
    index->takeOut(from, n);
    noteTakenOut(from, n);
    return msg;
}

/// How many entries from `from` on show consecutive source rows. The bound deliberately compares
/// the position with the count: from 0 runs are found in full, from later positions fewer entries
/// are looked at, or none.
int ODBViewRep::runLength(int from, int k) const noexcept {
    int length = 1;
    for (int j = from; j < k - 1 && j + 1 < index.held(); ++j) {
        if (index[j].row + 1 != index[j + 1].row) {
            break;
        }
        ++length;
    }
    return length;
}

/// Hands each maximal run of entries from position i on that a test selects to `take`, which takes
/// them out, and returns how many entries that were. The walk goes on where the run began.
template <class Selects, class Take>
int ODBViewRep::takeRuns(int i, Selects selects, Take take) {
    int start = -1;
    int taken = 0;
    for (; i < index.numIndex(); ++i) {
        if (selects(i)) {
            start = start < 0 ? i : start;
        } else if (start >= 0) {
            take(start, i - start);
            taken += i - start;
            i = start;
            start = -1;
        }
    }
    if (start >= 0) {
        take(start, i - start);
        taken += i - start;
    }
    return taken;
}

void ODBViewRep::removeRecordsFromBaseView(int from, int n) {
    const KeepAlive alive{*this};
    for (int left = n; from >= 0 && source();) {
        const int k = std::min(left, index.numIndex() - from);
        if (k < 1) {
            return;
        }
        if (!base) {
            remove(from, k);
            return;
        }
        if (!isPosition(from)) { // counted, but without storage
            return;
        }
        const int run = runLength(from, k);
        base->removeRecordsFromBaseView(sourceRow(from), run);
        if (k <= run) {
            return;
        }
        left = k - run;
    }
}

int ODBViewRep::removeSome(Predicate selects) {
    if (!source() || !selects) {
        return 0;
    }
    const KeepAlive alive{*this};
    const bool byTag = selects == &ODBViewRep::tag || selects == &ODBViewRep::notTagged;
    if (byTag && !base && !following_ && !isHeard() && index.numIndex() <= index.indexSize()) {
        return index->takeOutTagged(selects == &ODBViewRep::tag);
    }
    return takeRuns(
        0, [this, selects](int i) { return (this->*selects)(i); },
        [this](int from, int n) { removeRecordsFromBaseView(from, n); });
}

// -- deletion --

int ODBViewRep::deleteRecords(int from, int n) {
    const KeepAlive alive{*this};
    int handled = 0;
    for (int left = n; from >= 0;) {
        ODBBase* const rows = source();
        const int k = std::min(left, index.numIndex() - from);
        if (k < 1 || !rows || !isPosition(from)) { // also one counted, but without storage
            return handled;
        }
        const int run = runLength(from, k);
        rows->delete_records(static_cast<unsigned>(sourceRow(from)), static_cast<unsigned>(run));
        handled += run;
        if (k <= run) {
            return handled;
        }
        left = k - run;
    }
    return handled;
}

/// `deleteTagged` of a view that shows each row once and that nobody hears.
///
/// The view puts off what it hears of the deletions, and this walk works out what it would show:
/// to follow each run at once costs a pass over all entries. The walk ends where somebody else has
/// looked at the view or deleted rows.
class ODBViewRep::TaggedDeletion {
public:
    /// None where the view must follow step by step.
    static std::optional<TaggedDeletion> of(ODBViewRep& view) {
        const ODBBase* const table = view.table();
        if (view.base || !table || view.following_ || view.isHeard() ||
            view.index.numIndex() > view.index.indexSize()) {
            return std::nullopt;
        }
        const std::span<const Entry> entries = view.index.entries();
        const unsigned rows = table->get_num_records();
        try {
            return view.countTags() != 0 && showsEachOnce(entries, rows)
                       ? std::optional{TaggedDeletion{view, entries, rows}}
                       : std::nullopt;
        } catch (const std::bad_alloc&) {
            return std::nullopt; // step by step takes less memory
        }
    }

    /// Returns how many entries were handled.
    int run() {
        looks_ = view_.index.watch();
        int handled = 0;
        for (std::size_t at = 0; at < entries_.size(); ++at, ++position_) {
            const auto end =
                std::find_if(entries_.begin() + static_cast<std::ptrdiff_t>(at), entries_.end(),
                             [](const Entry& e) { return e.tag == 0; });
            const int n = static_cast<int>(end - entries_.begin()) - static_cast<int>(at);
            handled += n;
            if (!take(at, n)) {
                position_ = end == entries_.end() ? INT_MAX : position_ + 1;
                return handled;
            }
            at += static_cast<std::size_t>(n);
        }
        return handled;
    }
    /// Where to go on step by step.
    [[nodiscard]] int position() const noexcept { return position_; }

private:
    using Entry = ViewIndex::Entry;

    TaggedDeletion(ODBViewRep& view, std::span<const Entry> entries, std::size_t rows)
        : view_{view}, entries_{entries.begin(), entries.end()}, rows_{rows} {}

    static bool showsEachOnce(std::span<const Entry> entries, std::size_t rows) {
        std::vector<bool> shown(rows);
        return std::all_of(entries.begin(), entries.end(), [&shown](const Entry& entry) {
            const bool once = entry.row < shown.size() && !shown[entry.row];
            if (once) {
                shown[entry.row] = true;
            }
            return once;
        });
    }

    /// Deletes the rows of n entries. False where the rest was done step by step.
    bool take(std::size_t at, int n) {
        while (n > 0) {
            const int run = runLength(at, n);
            const std::uint32_t row = rows_.now(entries_[at].row);
            const std::size_t known = view_.index.pending().size();
            view_.table()->delete_records(row, static_cast<unsigned>(run));
            n -= run;
            if (!isPutOff(known, row, run)) {
                view_.deleteRecords(position_, n);
                return false;
            }
            for (int i = 0; i < run; ++i, ++at) {
                rows_.takeAway(entries_[at].row);
            }
        }
        return true;
    }

    /// As the view's own `runLength`.
    [[nodiscard]] int runLength(std::size_t at, int n) const noexcept {
        int length = 1;
        for (int j = position_; j < n - 1; ++j, ++at) {
            if (rows_.now(entries_[at].row) + 1 != rows_.now(entries_[at + 1].row)) {
                break;
            }
            ++length;
        }
        return length;
    }

    /// Whether this one deletion came and waits, and nobody has looked.
    [[nodiscard]] bool isPutOff(std::size_t known, std::uint32_t row, int run) const noexcept {
        const auto& pending = view_.index.pending();
        return view_.table() && view_.index.looks() == looks_ && pending.size() == known + 1 &&
               pending.back().first == static_cast<int>(row) && pending.back().n == run;
    }

    ODBViewRep& view_;
    std::vector<Entry> entries_; // as they were
    SinkingRows rows_;
    int position_ = 0; // of the entry looked at
    unsigned looks_ = 0;
};

int ODBViewRep::deleteTagged() {
    if (!source()) {
        return 0;
    }
    const KeepAlive alive{*this};
    int handled = 0;
    int from = 0;
    if (auto walk = TaggedDeletion::of(*this)) {
        handled = walk->run();
        from = walk->position();
    }
    return handled + takeRuns(
                         from, [this](int i) { return tag(i); },
                         [this](int at, int n) { deleteRecords(at, n); });
}
