// The order of a view: its index sorted by the records that the entries show.
//
// The comparison has the signature of `qsort` and so finds view and direction in this file: one
// view sort at a time in the process. An entry without a record equals every other, which is no
// consistent order; the sort is safe with that.

#include "ole/oledb/dbsort.h"
#include "ole/oledb/LargeVector.h"
#include "ole/oledb/LifeSupport.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/RecordOrder.h"
#include "ole/oledb/StableSort.h"
#include "ole/oledb/ViewKeepAlive.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>

namespace {

int sortDirection = 0;
ODBViewRep* sortedView = nullptr;

/// Names the view that the comparison is for, as long as it lives.
class Sorting {
public:
    explicit Sorting(ODBViewRep& view) noexcept { sortedView = &view; }
    Sorting(const Sorting&) = delete;
    Sorting& operator=(const Sorting&) = delete;
    ~Sorting() { sortedView = nullptr; }
};

int compareRecords(dbrecord* a, dbrecord* b) {
    if (!a || !b) {
        return 0;
    }
    return sortDirection >= 0 ? dbr_cmp(&a, &b) : dbr_backcmp(&a, &b);
}

/// The order of records of which some are missing.
LargeVector<std::uint32_t> plainOrderOf(const LargeVector<dbrecord*>& records) {
    LargeVector<std::uint32_t> order(records.size());
    std::iota(order.begin(), order.end(), 0U);
    stableSort(order.data(), order.size(), [&records](std::uint32_t a, std::uint32_t b) {
        return compareRecords(records[a], records[b]) < 0;
    });
    return order;
}

} // namespace

int odbViewSortFn(const void* a, const void* b) {
    const ODBBase* const from = sortedView ? sortedView->source() : nullptr;
    if (!from) {
        return 0;
    }
    const auto& first = *static_cast<const ViewIndex::Entry*>(a);
    const auto& second = *static_cast<const ViewIndex::Entry*>(b);
    return compareRecords(from->get_record(first.row), from->get_record(second.row));
}

void ODBViewRep::sort(int dirn, int x) {
    const KeepAlive alive{*this}; // the watchdog is the host's
    const LifeSupport lifeSupport;
    followToTheEnd();
    if (ODBBase* const from = source()) {
        sortDirection = dirn;
        from->sortPrepare(dirn, x);
        const Sorting sorting{*this};
        sortEntries();
    }
}

/// Each record is looked up once, not once a comparison.
void ODBViewRep::sortEntries() {
    const std::span entries = index.entries();
    LargeVector<dbrecord*> records(entries.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i] = (*this)[static_cast<int>(i)];
    }
    const bool missing = std::find(records.begin(), records.end(), nullptr) != records.end();
    putInOrder(entries, missing ? plainOrderOf(records) : orderOf(records, sortDirection < 0));
}
