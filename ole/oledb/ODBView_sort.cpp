// The order of a view: its index sorted by the records that the entries show.
//
// The comparison of entries has the signature of `qsort` and so finds view and direction in this
// file: one view sort at a time in the process.

#include "ole/oledb/dbsort.h"
#include "ole/oledb/LargeVector.h"
#include "ole/oledb/LifeSupport.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/RecordOrder.h"
#include "ole/oledb/ViewKeepAlive.h"

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

} // namespace

int odbViewSortFn(const void* a, const void* b) {
    const ODBBase* const from = sortedView ? sortedView->source() : nullptr;
    if (!from) {
        return 0;
    }
    const auto& first = *static_cast<const ViewIndex::Entry*>(a);
    const auto& second = *static_cast<const ViewIndex::Entry*>(b);
    dbrecord* const firstRecord = from->get_record(first.row);
    dbrecord* const secondRecord = from->get_record(second.row);
    if (!firstRecord || !secondRecord) {
        return 0;
    }
    return sortDirection >= 0 ? dbr_cmp(&firstRecord, &secondRecord)
                              : dbr_backcmp(&firstRecord, &secondRecord);
}

void ODBViewRep::sort(int dir, int force) {
    const KeepAlive alive{*this}; // the watchdog is the host's
    const LifeSupport lifeSupport;
    followToTheEnd();
    if (ODBBase* const from = source()) {
        sortDirection = dir;
        from->sortPrepare(dir, force);
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
    putInOrder(entries, orderOf(records, sortDirection < 0));
}
