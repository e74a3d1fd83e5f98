// A view's own tags: set, counted, worked out from the rows that it shows, and handed to its
// source.

#include "ole/oledb/ODBView.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/PreparedQuery.h"
#include "ole/oledb/ViewKeepAlive.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <memory>
#include <span>

int ODBViewRep::tagAll(bool on) {
    if (!source()) {
        return 0;
    }
    for (ViewIndex::Entry& entry : index.entries()) {
        entry.tag = on ? 1 : 0;
    }
    return index.numIndex();
}

int ODBViewRep::invertAllTags() {
    if (!source()) {
        return 0;
    }
    for (ViewIndex::Entry& entry : index.entries()) {
        entry.tag = entry.tag == 0 ? 1 : 0;
    }
    return index.numIndex();
}

int ODBViewRep::countTags() const {
    const std::span entries = index.entries();
    const auto tagged = [](const ViewIndex::Entry& entry) { return entry.tag != 0; };
    return source() ? static_cast<int>(std::count_if(entries.begin(), entries.end(), tagged)) : 0;
}

bool ODBViewRep::tag(int i) {
    return source() && isPosition(i) && index[i].tag != 0;
}

bool ODBViewRep::notTagged(int i) {
    return !tag(i);
}

/// Tags the entries whose source rows match, and returns their number.
template <class Matches>
int ODBViewRep::tagWhere(bool keep, Matches matches) {
    int found = 0;
    for (int i = 0; i < index.held(); ++i) {
        if (matches(sourceRow(i))) {
            set_tag(static_cast<unsigned>(i), 1);
            ++found;
        } else if (!keep) {
            set_tag(static_cast<unsigned>(i), 0);
        }
    }
    return found;
}

/// The number of the source's row goes down a chain as it is (`match_record`), so the table at its
/// bottom has the word.
int ODBViewRep::tagMatches(int keep) {
    ODBBase* const from = source();
    if (!from) {
        return 0;
    }
    const oledb* const asked = isPlain(*this) ? plainTableBelow(*this) : nullptr;
    if (!asked) {
        return tagWhere(keep != 0, [from](int row) { return from->match_record(row) != 0; });
    }
    const PreparedQuery query{*asked};
    return tagWhere(keep != 0, [&](int row) {
        const dbrecord* const record = asked->get_record(static_cast<unsigned>(row));
        return !record || query.matches(*record);
    });
}

int ODBViewRep::tagDuplicatesOrdered(int field) {
    if (!source()) {
        return 0;
    }
    int duplicates = 0;
    const char* first = get_field(0, field);
    for (int i = 1; i < index.numIndex(); ++i) {
        const char* const text = get_field(static_cast<unsigned>(i), field);
        if (compareIgnoringCase(first, text) == 0) {
            set_tag(static_cast<unsigned>(i), 1);
            ++duplicates;
        } else {
            first = text;
        }
    }
    return duplicates;
}

int ODBViewRep::tagDuplicates(int field) {
    if (!source()) {
        return 0;
    }
    const KeepAlive alive{*this}; // the temporary view gives its count back
    ODBViewRep ordered{table(), fieldSpecText()};
    ordered.baseView(this);
    ordered.displayAllRecords();
    ordered.set_sortfield(field);
    ordered.sort(1, 0);
    const int duplicates = ordered.tagDuplicatesOrdered(field);
    ordered.tagBaseFromTags();
    return duplicates;
}

void ODBViewRep::tagBaseFromTags() {
    ODBBase* const from = source();
    for (int i = 0; from && i < index.held(); ++i) {
        from->set_tag(static_cast<unsigned>(sourceRow(i)), tag(i) ? 1 : 0);
    }
}

ODBViewRep* ODBViewRep::newTagSubview() {
    if (!table()) {
        return nullptr;
    }
    const KeepAlive alive{*this}; // outlives the view, should memory run out
    auto view = std::make_unique<ODBViewRep>(db, fieldSpecText());
    view->baseView(this);
    view->displayTaggedRecordsAt(0);
    return view.release();
}

/// Gives each position the tag of the source row of that number, where the source has a field
/// "Tag".
template <class Tag>
void ODBViewRep::tagFromSourceRows(Tag tagOf) {
    ODBBase* const from = source();
    const int col = from ? from->get_fieldnum("Tag") : -1;
    for (unsigned i = 0; col >= 0 && i < from->get_num_records(); ++i) {
        set_tag(i, tagOf(*from, i, col) ? 1 : 0);
    }
}

void ODBViewRep::setupViewTagsFromOledbTagField() {
    const KeepAlive alive{*this};
    displayAllRecords();
    tagFromSourceRows([](ODBBase& from, unsigned row, int col) {
        return Tarn::parseInt(from.get_field(row, col)) != 0;
    });
}

void ODBViewRep::displayAllRecordsWithBaseTagStatus() {
    const KeepAlive alive{*this};
    displayAllRecords();
    tagFromSourceRows([](ODBBase& from, unsigned row, int) { return from.get_tag(row) != 0; });
}
