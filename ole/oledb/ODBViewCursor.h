#pragma once

#include "ole/ole.h"
#include "ole/oledb/ODBView.h"

class dbrecord;

/// Walks the positions of a view, over all entries or only the tagged ones. Position -1 stands on
/// no entry. The cursor keeps the view alive. Changes to the view do not move it: a position that
/// has gone stale is brought back into range by `set_index` and `++`; `--` steps down from it.
class OLE_API ODBViewCursor {
public:
    /// Stands at `start` (-1 when that is no position of the view).
    explicit ODBViewCursor(ODBView view, int start = -1, bool onlyTagged = false);

    /// The position that it stands at; -1 for none.
    [[nodiscard]] int position() const noexcept { return position_; }
    /// Whether `++` and `--` pass over untagged entries.
    [[nodiscard]] bool taggedOnly() const noexcept { return taggedOnly_; }
    /// Switches that; the position stays.
    void setTaggedOnly(bool onlyTagged) noexcept { taggedOnly_ = onlyTagged; }

    /// Goes to a position; -1 when it is none.
    ODBViewCursor& set_index(int i);
    /// Goes on; from the last to -1, and from -1 deliberately to the first. Linear over untagged
    /// entries.
    ODBViewCursor& operator++();
    /// Goes back; from the first to -1, and from -1 deliberately to the last.
    ODBViewCursor& operator--();
    /// Removes the entry from the view (see `ODBViewRep::remove`) and stands on the one that
    /// followed it, or -1.
    void remove();
    /// Goes to the first position that shows a record, tagged or not, and returns it. -1 where
    /// there is none before the first entry whose record is missing. Linear.
    int find(dbrecord* record);
    /// Goes from the current position on, itself included, to the one whose field equals a value
    /// ignoring case, and returns it; -1 for none, from -1, and for an unknown field. The current
    /// one need not be tagged, the others must where only tagged ones are walked. Linear.
    int findField(const char* field, const char* value);
    /// Halves the range from the current position to the end, over a view in ascending order of the
    /// field. Deliberately it never returns a find: -1 when the range closes, and **it does not
    /// return at all** when it lands on an equal value. Use `findField`.
    int findFieldSorted(const char* field, const char* value);

private:
    [[nodiscard]] int numIndex() const;
    [[nodiscard]] bool stopsAt(int i) const;
    int lose();

    ODBView view_;
    int position_ = -1;
    bool taggedOnly_ = false;
};
