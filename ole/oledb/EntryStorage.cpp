// The memory of a view's entries, and many removals from it in one pass.
//
// A removal moves the entries behind it down and leaves the last slots in use as they were. Then
// the size rule may halve the memory: what the new one has behind the entries in use is clear. So
// of many removals one must know, for each slot that fell out of use, whose tag was in it then, and
// how far up the last smaller memory was filled.

#include "ole/oledb/EntryStorage.h"

#include <climits>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

constexpr int smallest = 20;

int capacityFor(int n, int capacity) noexcept {
    if (n == 0) {
        return 0;
    }
    const long long need = std::max(n, smallest);
    if (capacity < need) {
        return static_cast<int>(std::min<long long>(std::max(2LL * capacity, need), INT_MAX));
    }
    return need * 2 < capacity ? capacity / 2 : capacity;
}

/// How many entries come along into memory of another size, while the count is still `count`.
int keptOf(int count, int n, int capacity) noexcept {
    return capacity < count ? std::max(n, smallest) : count;
}

} // namespace

/// What the size rule makes of removals.
class EntryStorage::Shrinking {
public:
    explicit Shrinking(const EntryStorage& storage) noexcept
        : count_{storage.count_}, capacity_{storage.capacity_}, kept_{storage.capacity_} {}

    void takeOut(int n) noexcept {
        const int capacity = capacityFor(count_ - n, capacity_);
        if (capacity != capacity_) {
            kept_ = std::min(kept_, keptOf(count_, count_ - n, capacity));
            capacity_ = capacity;
        }
        count_ -= n;
    }
    [[nodiscard]] int capacity() const noexcept { return capacity_; }
    /// Slots from here on are clear, or as they were where the memory is.
    [[nodiscard]] int kept() const noexcept { return kept_; }

private:
    int count_;
    int capacity_;
    int kept_;
};

void EntryStorage::clear() noexcept {
    entries_.reset();
    count_ = 0;
    capacity_ = 0;
}

void EntryStorage::abandon() noexcept {
    static_cast<void>(entries_.release());
    clear();
}

/// None where the present memory stays or goes.
std::unique_ptr<EntryStorage::Entry[]> EntryStorage::storageFor(int capacity) const {
    return capacity == 0 || capacity == capacity_
               ? nullptr
               : std::make_unique<Entry[]>(static_cast<std::size_t>(capacity));
}

/// Moves into what `storageFor` gave for n entries.
void EntryStorage::moveInto(std::unique_ptr<Entry[]> storage, int n) noexcept {
    const int capacity = capacityFor(n, capacity_);
    if (capacity == capacity_) {
        return;
    }
    if (storage) {
        std::copy_n(entries_.get(), std::min(keptOf(count_, n, capacity), capacity_),
                    storage.get());
    }
    entries_ = std::move(storage);
    capacity_ = capacity;
}

void EntryStorage::sizeFor(int n) {
    moveInto(storageFor(capacityFor(n, capacity_)), n);
}

int EntryStorage::put(std::uint32_t row) {
    sizeFor(count_ + 1);
    entries_[static_cast<std::size_t>(count_)].row = row;
    return count_++;
}

void EntryStorage::openGap(int at, int n) noexcept {
    Entry* const entries = entries_.get();
    if (n > 0) {
        std::copy_backward(entries + at, entries + count_, entries + count_ + n);
    }
    count_ += n;
}

namespace {

/// Those that go to places in front of the first entry are turned round, and the others follow the
/// one that is then the first.
void turnRound(std::vector<std::uint32_t>& rows, int at) {
    const auto front = std::min<long long>(-static_cast<long long>(at), std::ssize(rows) - 1);
    std::reverse(rows.begin(), rows.begin() + front);
    std::rotate(rows.begin(), rows.begin() + front, rows.end());
}

} // namespace

/// Each insertion in front of an entry moves it up and leaves its tag to the new one. Insertions at
/// the end find the tags that are there, which a larger memory on the way does not have.
void EntryStorage::insert(int at, std::vector<std::uint32_t> rows) {
    if (rows.empty() || at >= count_) {
        for (const std::uint32_t row : rows) {
            put(row);
        }
        return;
    }
    if (at < 0) {
        turnRound(rows, at);
    }
    if (count_ == 0) {
        put(rows.back());
        rows.pop_back();
    }
    const int n = static_cast<int>(rows.size());
    for (int i = 1; i <= n; ++i) {
        sizeFor(count_ + i);
    }
    openGap(std::max(at, 0), n);
    Entry* const gap = entries_.get() + std::max(at, 0);
    const std::uint8_t tag = gap[n].tag;
    std::transform(rows.begin(), rows.end(), gap, [tag](std::uint32_t row) {
        return Entry{row, tag};
    });
}

void EntryStorage::takeOut(int from, int n) {
    auto storage = storageFor(capacityFor(count_ - n, capacity_));
    Entry* const entries = entries_.get();
    if (n > 0 && from + n < held()) {
        std::copy(entries + from + n, entries + held(), entries + from);
    }
    moveInto(std::move(storage), count_ - n);
    count_ -= n;
}

/// Leaves the entries that `keep` keeps, and in the slots behind them the tags that were last in
/// use there, from the end on.
template <class Keep>
void EntryStorage::leave(const Shrinking& size, const std::vector<std::uint8_t>& tags, Keep keep) {
    auto storage = storageFor(size.capacity());
    Entry* const to = storage ? storage.get() : entries_.get();
    int kept = 0;
    std::for_each_n(entries_.get(), count_, [&](Entry entry) {
        if (keep(entry)) {
            to[kept++] = entry;
        }
    });
    int slot = count_;
    for (const std::uint8_t tag : tags) {
        if (--slot < size.kept()) {
            to[slot].tag = tag;
        }
    }
    if (size.capacity() != capacity_) {
        entries_ = std::move(storage);
    }
    capacity_ = size.capacity();
    count_ = kept;
}

/// While a run goes, the entries behind it are still as they were, but for their places: those of
/// the last ones stay in the slots that fall out of use.
int EntryStorage::takeOutTagged(bool tagged) {
    const Entry* const entries = entries_.get();
    const auto goes = [tagged](const Entry& entry) { return (entry.tag != 0) == tagged; };
    std::vector<std::uint8_t> tags;
    Shrinking size{*this};
    for (int i = 0; i < count_; ++i) {
        int run = 0;
        for (; i < count_ && goes(entries[i]); ++i, ++run) {
            tags.push_back(entries[count_ - 1 - run].tag);
        }
        if (run != 0) {
            size.takeOut(run);
        }
    }
    leave(size, tags, [goes](const Entry& entry) { return !goes(entry); });
    return static_cast<int>(tags.size());
}

/// An entry that shows a deleted row.
struct EntryStorage::Gone {
    int position;
    unsigned deletion;
    int row;
    unsigned turn; ///< when it goes
};

std::vector<EntryStorage::Gone> EntryStorage::showing(const DeletedRows::Pieces& pieces) const {
    std::vector<Gone> gone;
    PieceFinder finder{pieces};
    for (int i = 0; i < count_; ++i) {
        const int row = entries_[static_cast<std::size_t>(i)].signedRow();
        if (const DeletedRows::Piece* const piece = finder.find(row)) {
            gone.push_back({i, piece->deletion, row, static_cast<unsigned>(gone.size())});
        }
    }
    return gone;
}

namespace {

/// Entries go by deletion, row and position; the list is by position.
template <class List>
void giveTurns(List& gone) {
    const auto before = [](const auto& a, const auto& b) {
        return std::tie(a.deletion, a.row) < std::tie(b.deletion, b.row);
    };
    if (std::is_sorted(gone.begin(), gone.end(), before)) {
        return; // as their turns are
    }
    std::vector<unsigned> order(gone.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned a, unsigned b) { return before(gone[a], gone[b]); });
    for (unsigned turn = 0; turn < order.size(); ++turn) {
        gone[order[turn]].turn = turn;
    }
}

} // namespace

/// Each entry that goes leaves, in the slot that falls out of use, the tag of the last entry there
/// is at that moment.
void EntryStorage::takeOutRows(const DeletedRows& rows) {
    const DeletedRows::Pieces pieces = rows.pieces();
    std::vector<Gone> gone = showing(pieces);
    giveTurns(gone);
    std::vector<std::uint8_t> tags(gone.size());
    Shrinking size{*this};
    int last = count_ - 1;
    auto behind = gone.rbegin(); // the last entry that goes, of those not gone yet
    for (unsigned turn = 0; turn < tags.size(); ++turn) {
        for (; behind != gone.rend() && behind->position == last && behind->turn < turn; ++behind) {
            --last;
        }
        tags[turn] = entries_[static_cast<std::size_t>(last)].tag;
        size.takeOut(1);
    }
    PieceFinder finder{pieces};
    leave(size, tags, [&finder](Entry& entry) {
        const bool stays = !finder.find(entry.signedRow());
        entry.row -= static_cast<std::uint32_t>(finder.before());
        return stays;
    });
}

void EntryStorage::takeOutRowsPlainly(const DeletedRows& rows) noexcept {
    for (const DeletedRows::Run& run : rows.runs()) {
        const std::int64_t end = std::int64_t{run.first} + run.n;
        Entry* const kept = std::remove_if(
            entries_.get(), entries_.get() + count_, [&run, end](const Entry& entry) {
                return entry.signedRow() >= run.first && entry.signedRow() < end;
            });
        count_ = static_cast<int>(kept - entries_.get());
        std::for_each_n(entries_.get(), count_, [&run](Entry& entry) {
            if (entry.signedRow() > run.first) {
                entry.row -= static_cast<std::uint32_t>(run.n);
            }
        });
    }
}
