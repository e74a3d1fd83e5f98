// How entries come into a view: rows that are displayed, rows that are new in the table, and what a
// copy takes over.

#include "ole/oledb/LifeSupport.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/Cookie.h"
#include "tarn/CookieSet.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <unordered_set>
#include <utility>

// -- display --

int ODBViewRep::displayRecordsAt(int row, int n, int at) {
    const KeepAlive alive{*this};
    followToTheEnd();
    if (!source() || n < 0 || n > INT_MAX - index.numIndex()) {
        return 0;
    }
    const int first = clamped(at);
    sizeIndexFor(index.numIndex() + n);
    index->openGap(first, n);
    auto shown = static_cast<std::uint32_t>(row);
    std::for_each_n(index.entries().data() + first, n,
                    [&shown](ViewIndex::Entry& entry) { entry.row = shown++; });
    return n;
}

bool ODBViewRep::displayMatchAt(const char* field, const char* value, int at) {
    const KeepAlive alive{*this};
    followToTheEnd();
    ODBBase* const from = source();
    const int row = from ? from->findFirst(field, value, 0) : -1;
    if (row < 0) {
        return false;
    }
    displayRecordsAt(row, 1, at);
    return true;
}

void ODBViewRep::displayTaggedRecordsAt(int at) {
    const KeepAlive alive{*this};
    const LifeSupport lifeSupport;
    followToTheEnd();
    ODBBase* const from = source();
    if (!from) {
        return;
    }
    const int n = from->get_num_tags();
    const int first = clamped(at);
    sizeIndexFor(index.numIndex() + n);
    index->openGap(first, n);
    ViewIndex::Entry* next = index.entries().data() + first;
    const ViewIndex::Entry* const end = next + n;
    for (unsigned i = 0; next < end && i < from->get_num_records(); ++i) {
        if (from->get_tag(i) != 0) {
            (next++)->row = i;
        }
    }
}

/// The rows that the source finds for cookies: whatever the chain, it asks the table at its bottom.
std::vector<int> ODBViewRep::rowsOf(const std::vector<Cookie>& cookies) const {
    if (oledb* const asked = plainTableBelow(*this)) {
        return asked->findFirstOfEach(cookies);
    }
    std::vector<int> rows(cookies.size(), -1);
    ODBBase* const from = source();
    std::transform(cookies.begin(), cookies.end(), rows.begin(), [from](const Cookie& cookie) {
        return from ? from->findFirst("Cookie", cookie.asString(false).c_str(), 0) : -1;
    });
    return rows;
}

int ODBViewRep::displayRecordsAt(const std::vector<Cookie>& cookies, int at) {
    const KeepAlive alive{*this};
    const LifeSupport lifeSupport;
    followToTheEnd();
    std::vector<std::uint32_t> found;
    for (const int row : rowsOf(cookies)) {
        if (row >= 0) {
            found.push_back(static_cast<std::uint32_t>(row));
        }
    }
    return displayEachAt(std::move(found), at);
}

/// Displays rows as one call for each does, each behind the one before.
int ODBViewRep::displayEachAt(std::vector<std::uint32_t> rows, int at) {
    followToTheEnd();
    if (!source()) {
        return 0;
    }
    const auto room = static_cast<std::size_t>(INT_MAX - index.numIndex());
    rows.resize(std::min(rows.size(), room));
    const int shown = static_cast<int>(rows.size());
    index->insert(at, std::move(rows));
    return shown;
}

int ODBViewRep::displayRecordsAt(const CookieSet& cookies, int at) {
    return displayRecordsAt(std::vector<Cookie>(cookies.begin(), cookies.end()), at);
}

void ODBViewRep::displayAllRecords() {
    const KeepAlive alive{*this};
    const LifeSupport lifeSupport;
    if (source()) {
        remove(0, index.numIndex());
        followToTheEnd(); // with nothing to renumber any more
    }
    if (ODBBase* const from = source()) {
        displayRecordsAt(0, static_cast<int>(from->get_num_records()), 0);
    }
}

int ODBViewRep::displayAllFromAt(ODBViewRep* other, int at) {
    if (!other) {
        return 0;
    }
    const KeepAlive alive{*this};
    const KeepAlive otherAlive{*other};
    const LifeSupport lifeSupport;
    followToTheEnd();
    other->followToTheEnd();
    if (base || !table() || other->base || other->db != db) {
        return 0;
    }
    std::unordered_set<const dbrecord*> shown;
    for (int i = 0; i < index.numIndex(); ++i) {
        shown.insert((*this)[i]);
    }
    std::vector<std::uint32_t> missing;
    for (int i = 0; i < other->index.numIndex(); ++i) {
        const dbrecord* const record = (*other)[i];
        if (record && shown.insert(record).second) {
            missing.push_back(static_cast<std::uint32_t>(other->baseIndex(i)));
        }
    }
    return displayEachAt(std::move(missing), at);
}

int ODBViewRep::find(dbrecord* record) const {
    for (int i = 0; record && i < index.held(); ++i) {
        if ((*this)[i] == record) {
            return i;
        }
    }
    return -1;
}

// -- rows of the table --

int ODBViewRep::insertBlankRecords(int at, int n) {
    const KeepAlive alive{*this};
    followToTheEnd();
    ODBBase* const from = source();
    if (!from || n < 0 || n > INT_MAX - index.numIndex()) {
        return 0;
    }
    const int p = clamped(at);
    if (p != index.numIndex() && !isPosition(p)) {
        return 0; // counted, but without storage: there is no row to insert before
    }
    auto first = static_cast<std::uint32_t>(sourceRow(p));
    // First, so that the table changes only where the view can follow.
    sizeIndexFor(index.numIndex() + n);
    if (p == index.numIndex()) {
        first = from->get_num_records();
        from->add_records(n);
    } else {
        from->insert_records(first, static_cast<unsigned>(n));
    }
    const auto shift = static_cast<std::uint32_t>(n);
    index->openGap(p, n);
    for (int i = p; i < index.numIndex(); ++i) {
        std::uint32_t& row = index[i].row;
        row = i < p + n ? first + static_cast<std::uint32_t>(i - p) : row + shift;
    }
    return n;
}

// -- copies --

void ODBViewRep::copyTagsTo(ODBViewRep& other) const {
    for (int i = 0; i < index.held(); ++i) {
        other.set_tag(static_cast<unsigned>(i), index[i].tag);
    }
}

ODBViewRep* ODBViewRep::copy() {
    if (!table()) {
        return nullptr;
    }
    auto view = std::make_unique<ODBViewRep>(db, fieldSpecText());
    if (base) {
        view->baseView(base);
        view->displayAllRecords();
    } else {
        view->displayAllFromAt(this, 0);
        view->addParamsFrom(db);
    }
    copyTagsTo(*view);
    return view.release();
}

ODBViewRep* ODBViewRep::copyWithNewBaseView() {
    if (!table()) {
        return nullptr;
    }
    auto table = std::make_unique<oledb>(*db, 1);
    auto view = std::make_unique<ODBViewRep>(table.get());
    for (int i = 0; i < index.numIndex(); ++i) {
        if ((*this)[i]) {
            view->displayRecordsAt(baseIndex(i), 1, i);
        }
    }
    view->addParamsFrom(this);
    copyTagsTo(*view);
    static_cast<void>(table.release()); // the caller's, through the view
    return view.release();
}
