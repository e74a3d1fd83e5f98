#pragma once

#include "ole/ole.h"
#include "ole/oledb/ODBBase.h"
#include "ole/oledb/ViewIndex.h"
#include "tarn/AssocList.h"
#include "tarn/Guard.h"
#include "tarn/LightweightString.h"
#include "tarn/Notifier.h"
#include "tarn/Ptr.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Cookie;
class CookieSet;
class GrowString;
class NotifyMsg;
class oledb;
class SExpr;
class SExprRef;
class TextFile;

/// A view: an ordered selection of the rows of a table, perhaps seen through another view.
///
/// A view holds an index of row numbers into its *source* (the base view where one is set, else the
/// table), one tag an entry, its own parameters and file name, and a field specification. Row
/// numbers of the interface are positions in the index. View tags have nothing to do with the
/// table's tags.
///
/// **Life.** Views belong on the heap and in handles (`ODBView`): each handle and each view built
/// on a view counts in its `refs`, and the last to go deletes it. The table is not counted and
/// should outlive the view, which otherwise is left without a source.
///
/// **What differs from a table behind the same operation:**
/// `delete_tagged_records` takes the tagged entries out of the chain of views, keeps the rows, and
/// returns 0; `set_show_tags_only` takes out the untagged entries for good; `tag_matching_records`
/// ignores its argument and clears the tags of what does not match; `get_tag` is 0 out of range;
/// `get_param_val` is "" for none; `findFirst` ignores its third argument and gives the *table's*
/// row; `match_record` asks about the source's row of that number; `sort` orders the index;
/// `insert_records` at the all-ones number inserts at the front; `delete_records` of all-ones rows
/// does nothing; `tag_all_different` tags one of all-empty values. `get_fieldnum` and `findFirst`
/// of a view without a source are 0.
///
/// **Deletions.** A view hears of rows deleted in its table, and of entries removed from its base
/// view, while that happens, drops its entries for them and renumbers the others. A view that
/// stands directly on the table stays right. A view over a view hears of each deletion in the table
/// several times, numbered differently, and **deliberately loses further entries**: after rows were
/// deleted in the table, fill it again. What goes through the upper view itself (`removeSome`,
/// `deleteRecords`) does the same at the levels between. Where memory runs out while a view follows
/// a deletion, fill it and the views above it again: rows that no longer exist show as null.
///
/// **Listeners** are told in the middle of this. They may delete further rows, add entries to views
/// and take them out, drop views and throw: the views follow all the same, and what was thrown
/// first passes through the operation, which ends with the run of entries that it had come to.
/// Before entries are added to a view, or sorted, it hears of all that was deleted below it and
/// follows that to the end, and so do those who listen beside it: a row that is shown is numbered
/// as its source is then. Entries that a listener adds in the middle of `displayAllRecords` stay,
/// behind those of every row.
///
/// **Tags of new entries.** Adding an entry writes its row and leaves its tag byte as the storage
/// held it: clear in fresh storage, stale where entries were removed before. Set tags after filling
/// a view.
///
/// Without a source, which includes a table that was destroyed, a view and those upon it have no
/// entries; operations on rows and tags do nothing and give 0, false or null; `find`,
/// `findViewIndexForBaseRow` and `dbFieldIndex` give -1, `notTagged` true. What is the view's own
/// works on: parameters, file name, field specification.
///
/// Costs are in V, the number of entries; each access through a chain adds one step a level, and so
/// does adding entries. What goes down a chain takes stack for each level. Dropping a chain takes
/// none; deletions and removals take most: through some 10,000 levels more than 8 MiB.
class OLE_API ODBViewRep : public ODBBase, public Notifier {
public:
    /// A question about a position: `tag`, `notTagged`, or one of a derived class.
    using Predicate = bool (ODBViewRep::*)(int);

    /// A view on a table that shows no rows yet and presents all fields.
    explicit ODBViewRep(oledb* table);
    /// The same with a field specification, see `fieldSpec`; null means all fields.
    ODBViewRep(oledb* table, const char* spec);
    /// The same with a null-terminated list of field names; null means all fields.
    ODBViewRep(oledb* table, const char** names);
    /// The same with all fields.
    ODBViewRep(oledb* table, std::nullptr_t) : ODBViewRep{table} {}
    ~ODBViewRep() override;

    /// Sets every default without freeing anything. Only for a view that holds nothing.
    void init();

    // -- table, base view, index --

    /// Sets the table: drops base view, index and parameters and takes file name and parameters
    /// from the new one. Nothing happens for the table that is set already.
    void odb(oledb* table);
    /// Sets the base view, which is counted, or with null drops it: index and parameters go, the
    /// parameters of the new base view come. The registration with the table stays. A base view
    /// that leads back to this view is not taken.
    void baseView(ODBViewRep* newBase);
    /// The table; null where none is set, and once it was destroyed.
    [[nodiscard]] oledb* table() const noexcept { return tableLife_.expired() ? nullptr : db; }
    /// The base view, null for none; good while this view has it.
    [[nodiscard]] ODBViewRep* baseView() const noexcept { return base; }
    /// The base view, else the table, else null; null also once the table was destroyed.
    [[nodiscard]] ODBBase* source() const noexcept;
    /// Empties the index and frees it, tags included. Tells nobody.
    void clear();
    /// Sets the path that `save_text` and `save_tags` write to; the table's own stays. The same as
    /// `set_filename`.
    void fileName(LightweightString<wchar_t> path);
    /// Gives the parameter "OLEDB" its current text where it was set to a null string; any other
    /// text stays, and where there is none, none is made.
    void internRevision();
    ///@{
    /// Copies parameters, replacing those of the same name. This and the setting of table or base
    /// view are the only times that parameters travel: what is set later below does not come up,
    /// and what is set here does not go down.
    void addParamsFrom(oledb* other);
    void addParamsFrom(ODBViewRep* other);
    ///@}
    /// The view's own parameters, in the order in which they came.
    [[nodiscard]] const AssocList& parameters() const noexcept { return params; }
    /// Shows every row of the source, without a notice. Tags stay as the storage holds them.
    /// Linear.
    void buildIndex();
    /// Makes room for n entries: at least 20, growing to double, and shrinking to half when not
    /// even half of the room is needed. 0 frees the storage and leaves the count.
    void sizeIndexFor(int n);
    /// Appends an entry for a source row and returns its position. Amortised constant.
    int append(int row);
    /// The table's record at a position; null out of range.
    [[nodiscard]] dbrecord* operator[](int i) const;
    /// The table's row behind a position; 0, which is also a real row, out of range.
    [[nodiscard]] int baseIndex(int i) override;
    /// The source row of a position; 0, which is also a real row, out of range.
    [[nodiscard]] int sourceRow(int i) const noexcept;
    /// The first position that shows a source row; -1 for none. Linear.
    [[nodiscard]] int findViewIndexForBaseRow(unsigned long row) const;
    /// The number of entries, 0 without a source; after `sizeIndexFor(0)` more than the capacity
    /// holds.
    [[nodiscard]] int count() const noexcept { return source() ? index.numIndex() : 0; }
    /// The number of entries that there is storage for.
    [[nodiscard]] int capacity() const noexcept { return index.indexSize(); }
    /// How many handles and views built on this one hold it.
    [[nodiscard]] unsigned references() const noexcept { return refs; }
    /// True: no filter can be set.
    [[nodiscard]] bool satisfiesCondition(dbrecord* record);
    /// Does nothing: no order can be set.
    void sortIndex();
    /// The listener that is registered with the table and the base view. Returns 0. Where nobody
    /// listens to this view it puts its part off until somebody looks, and then follows all that it
    /// has heard of in one pass; otherwise V steps a deleted row.
    int recordsDeletedNotify(const NotifyMsg& msg);

    // -- tags: linear in V where more than one entry is meant --

    /// Gives every entry the same tag; returns the number of entries, 0 without a source.
    int tagAll(bool on);
    /// Turns every entry's tag around; returns the number of entries, 0 without a source.
    int invertAllTags();
    /// How many entries are tagged; 0 without a source.
    [[nodiscard]] int countTags() const;
    /// Whether a position is tagged; false out of range.
    [[nodiscard]] bool tag(int i);
    /// Whether a position is untagged; true out of range.
    [[nodiscard]] bool notTagged(int i);
    /// Tags the entries that match the source's query and, unless `keep`, takes the tags of the
    /// others; returns the number of matches. An entry without a row matches, and without a query
    /// every one. The query is made ready once, and asked of each entry.
    int tagMatches(int keep);
    /// Tags every entry whose field holds the same text, ignoring case, as the first of its run,
    /// and returns how many. The view must be in the order of that field. Tags are only set.
    int tagDuplicatesOrdered(int field);
    /// Tags every entry but the first of each group of equal values and takes all other tags;
    /// returns how many. The table's sort key is that field afterwards, and names of the field
    /// specification that the source does not know are warned about once more. V log V comparisons.
    int tagDuplicates(int field);
    /// Gives the source's rows the tags of this view's entries. One level only. Where two entries
    /// show one row, the last one's tag stays.
    void tagBaseFromTags();
    /// A new view over this one that shows its tagged entries; the caller owns it. Null without a
    /// table.
    [[nodiscard]] ODBViewRep* newTagSubview();
    /// Shows all rows, and tags those whose field "Tag" holds a number other than 0.
    void setupViewTagsFromOledbTagField();

    // -- display: entries are added without a notice; long displays tell the watchdog --

    /// Inserts entries for n source rows from `row` on before position `at`, which is brought into
    /// range; returns n, 0 for a negative n. The rows are not checked. Linear in the entries
    /// behind.
    int displayRecordsAt(int row, int n, int at);
    /// Inserts an entry for the first row whose field holds a value; false when there is none. The
    /// row found is the table's: over a base view it is taken for a position of that view all the
    /// same. Linear in the table's rows, but for the field "Cookie".
    bool displayMatchAt(const char* field, const char* value, int at);
    /// Inserts the source's tagged rows. Linear in the source's rows and in the entries behind. In
    /// a table that shows tagged rows only the numbers are those of the shown rows.
    void displayTaggedRecordsAt(int at);
    ///@{
    /// Inserts the rows of cookies, one after the other from `at` on; returns how many were found.
    /// Linear in the cookies, in the entries behind `at` and, where a cookie is not found, in the
    /// table's rows. Over a base view a row is taken as `displayMatchAt` takes it.
    int displayRecordsAt(const std::vector<Cookie>& cookies, int at);
    int displayRecordsAt(const CookieSet& cookies, int at);
    ///@}
    /// Removes every entry, with notice, and shows every source row. Tags are clear afterwards
    /// where the view had entries.
    void displayAllRecords();
    /// The same with the tags of the source, where it has a field "Tag".
    void displayAllRecordsWithBaseTagStatus();
    /// Adds what another view on the same table shows and this one does not; neither may have a
    /// base view. Returns how many were added. Linear in both.
    int displayAllFromAt(ODBViewRep* other, int at);
    /// The first position that shows a record; -1 for none. Linear.
    [[nodiscard]] int find(dbrecord* record) const;

    // -- removal: entries go, rows stay; "recordsDeleted" tells the views above --

    /// Takes n entries out, or as many as there are; nothing happens out of range. Sends the
    /// positions as they were, also for n = 0 on a position in range. Linear in the entries behind,
    /// and V steps of each view above for each entry.
    void remove(int from, int n);
    /// Takes entries out of the whole chain down to the view that stands on the table.
    void removeRecordsFromBaseView(int from, int n);
    /// Takes out, by runs, what a predicate selects; returns how many. V steps while
    /// nobody listens to a view that stands on the table; else V for each run, and what `remove`
    /// costs above: to leave few of many, rather fill a new view with those few.
    int removeSome(Predicate selects);
    ///@{
    /// `removeSome` by the view's tags.
    int removeTagged() { return removeSome(&ODBViewRep::tag); }
    int removeNonTagged() { return removeSome(&ODBViewRep::notTagged); }
    ///@}

    // -- rows of the table --

    /// Inserts n empty rows into the table and entries for them here; returns n. A table that
    /// refuses rows (show-tags-only) is not noticed: the entries then show rows that do not exist.
    /// Other views of the table keep their old numbers. The view is taken to be in the source's
    /// order: entries before `at` are not renumbered.
    int insertBlankRecords(int at, int n);
    /// Deletes the table's rows behind positions; returns how many positions were handled. V steps
    /// for each run of rows, and of every view that somebody listens to for each row.
    int deleteRecords(int from, int n);
    /// Deletes the table's rows behind the tagged positions; returns how many positions were
    /// handled. Where two positions show one row, a further row goes. V steps, and log R for each
    /// row that goes, while nobody listens to a view that stands on the table and shows no row
    /// twice; else as `deleteRecords`.
    int deleteTagged();

    // -- order, copies, files --

    /// Sorts the index by the table's keys; tags travel along, equal entries keep their order.
    /// Sends nothing. V log V comparisons at most; further memory as for a table, and 8 bytes an
    /// entry.
    void sort(int dir, int force) override;
    /// A new view on the same table; the caller owns it. Without a base view it shows what this one
    /// shows, each row once; over a base view it shows all of that. Tags are copied by position.
    /// Null without a table. Linear in V.
    [[nodiscard]] ODBViewRep* copy();
    /// A new view, the caller's, on a new table, also the caller's (`table`), that holds copies of
    /// the rows that the table shows. Null without a table.
    [[nodiscard]] ODBViewRep* copyWithNewBaseView();
    ///@{
    /// Saves the view as a table file: its parameters, the table's columns, the records shown; a
    /// field "Tag" holds the view's tags. Returns the position reached, the view's count when
    /// nothing failed; 0 on failure and without a table, and with `noRecords`, which writes the
    /// heading alone.
    int saveAsText(LightweightString<wchar_t> name, bool noRecords);
    int saveAsText(const char* name, bool noRecords);
    ///@}
    ///@{
    /// Saves the records whose *table* tag is set, as they are. Returns the position reached, not
    /// the number saved; 0 on failure. Reports a failed check on standard output, and works.
    int saveOnlyTagged(LightweightString<wchar_t> name);
    int saveOnlyTagged(const char* name);
    ///@}

    // -- field specification --

    /// Appends the names of all fields of the source, separated by commas.
    void identityFieldSpec(GrowString& out) const;
    /// The number of the first field with exactly this name; -1 for none.
    [[nodiscard]] int dbFieldIndex(const char* name) const;
    /// Stores a text of field names separated by commas or tabs, and adds a reference for each to
    /// the parsed list; unknown names are warned about on the console. A further call deliberately
    /// puts the new references before the old ones and reverses the whole list. Null drops the text
    /// and leaves the list.
    void fieldSpec(const char* spec);
    /// The text, null for none.
    [[nodiscard]] const char* fieldSpecText() const noexcept;
    /// The parsed list, owned by the view; null when empty.
    [[nodiscard]] const SExpr* fieldList() const noexcept { return fields.get(); }
    /// Appends the text and the parsed list, a line each.
    void asString(GrowString& out) const;

    // -- the interface of tables; see above for what differs --

    /// `saveAsText` of everything to the view's own file name.
    int save_text() override;
    /// `saveOnlyTagged` to the view's own file name: by the tags of the table, not of the view.
    int save_tags() override;
    /// `insertBlankRecords`; the all-ones number inserts at the front.
    int insert_records(unsigned at, unsigned n) override;
    /// `deleteRecords`: the rows go from the table, and so from every view.
    int delete_records(unsigned from, unsigned n) override;
    /// Takes the tagged entries out of the chain of views, leaves the rows, and returns 0.
    /// `deleteTagged` deletes the rows.
    int delete_tagged_records() override;
    [[nodiscard]] unsigned get_num_records() const override;
    [[nodiscard]] unsigned get_num_fields() const override;
    /// `operator[]`: the table's row.
    [[nodiscard]] dbrecord* get_record(unsigned i) const override;
    [[nodiscard]] dbrecord* make_dummy_record() override;
    /// The field number is taken as 16 bits: 65536 reads field 0.
    [[nodiscard]] const char* get_field(unsigned i, int f) const override;
    [[nodiscard]] const char* get_field(unsigned i, const char* name) const override;
    [[nodiscard]] const char* get_fieldname(unsigned f) override;
    [[nodiscard]] unsigned get_fieldsize(unsigned f) override;
    [[nodiscard]] DBFieldTypes::eType get_field_type(unsigned f) override;
    int set_fieldtype(unsigned f, DBFieldTypes::eType type) override;
    [[nodiscard]] DBFieldTypes::eType get_fieldtype(unsigned f) override;
    [[nodiscard]] int get_fieldnum(const char* name) const override;
    int set_fieldname(unsigned f, const char* name) override;
    /// Sets the view's own file name; the table's stays.
    void set_filename(LightweightString<wchar_t> path) override;
    [[nodiscard]] LightweightString<wchar_t> get_filename() override;
    void set_sortfield(int f) override;
    void set_sortfields(int* list) override;
    void set_sort_offset(int offset) override;
    ///@{
    /// Sets the entry's tag, any number but 0 as 1, or turns it over, and returns 1; 0 and nothing
    /// done out of range.
    int set_tag(unsigned i, int v) override;
    int invert_tag(unsigned i) override;
    ///@}
    int set_all_tags(int v) override;
    int invert_all_tags() override;
    /// Takes the untagged entries out for good (`removeNonTagged`), whatever the argument, and
    /// returns how many.
    int set_show_tags_only(int) override;
    /// 0.
    [[nodiscard]] int get_show_tags_only() override;
    /// The entry's tag; 0 out of range.
    [[nodiscard]] int get_tag(unsigned i) override;
    [[nodiscard]] int get_num_tags() override;
    int set_query(dbrecord* query) override;
    /// `tagMatches(0)`: the argument is not looked at, and what does not match loses its tag.
    int tag_matching_records(int) override;
    /// `tagDuplicates`, then turns all tags over: one entry of each value is tagged. Returns their
    /// number. The order stays.
    int tag_all_different(int field) override;
    using ODBBase::set_field;
    int set_field(unsigned r, const Cookie& cookie) override;
    int set_field(unsigned r, unsigned f, const char* text) override;
    int set_field(unsigned r, unsigned f, int number) override;
    int set_field(unsigned r, unsigned f, double seconds) override;
    int set_field(unsigned r, unsigned f, bool flag) override;
    int in_field(unsigned r, unsigned f, char* buf, int size) override;
    int in_field(unsigned r, unsigned f, int& number) override;
    int in_field(unsigned r, unsigned f, double& number) override;
    int in_field(unsigned r, unsigned f, bool& flag) override;
    /// Appends empty rows to the table and entries for them here; returns the position of the
    /// first, 0 without a source. A table that refuses rows is not noticed, see
    /// `insertBlankRecords`.
    int add_records(int n) override;
    ///@{
    /// Sets a parameter of this view alone, null as a null string; a null name nothing. Returns 0.
    /// A saved view with parameters loads only where the first is "OLEDB"; a name "" is lost.
    int add_param(const char* name, const char* value) override;
    int set_param_val(const char* name, const char* value) override;
    ///@}
    /// The value of the view's own parameter; "" for none.
    [[nodiscard]] const char* get_param_val(const char* name) const override;
    /// The number of the *table's* first row whose field holds the whole text, shown here or not;
    /// -1 for none. The third argument is not looked at.
    [[nodiscard]] int findFirst(const char* field, const char* value, int) override;
    void sortPrepare(int dir, int force) override;
    /// Whether the row of number `r` of the source matches: deliberately not the one shown at that
    /// position.
    [[nodiscard]] int match_record(int r) const override;
    /// Whether the source is valid, as a table is that was made from fields or loaded; 0 without
    /// one.
    [[nodiscard]] int get_valid() const override;

private:
    friend class ODBView;

    class KeepAlive;
    class Following;
    class TaggedDeletion;

    [[nodiscard]] bool isPosition(int i) const noexcept { return i >= 0 && i < index.held(); }
    [[nodiscard]] int clamped(int at) const noexcept;
    [[nodiscard]] bool isHeard() const noexcept;
    [[nodiscard]] int runLength(int from, int k) const noexcept;
    void referToSource(SExprRef& reference) const;
    void retargetReferences(const ODBBase* from);
    void release() noexcept;
    [[nodiscard]] std::vector<int> rowsOf(const std::vector<Cookie>& cookies) const;
    int displayEachAt(std::vector<std::uint32_t> rows, int at);
    void copyTagsTo(ODBViewRep& other) const;
    void followToTheEnd();
    void noteTakenOut(int from, int n) noexcept;
    NotifyMsg takeOut(int from, int n);
    void writeHeading(TextFile& file) const;
    void sortEntries();
    [[nodiscard]] bool leadsTo(const ODBViewRep* view) const noexcept;
    template <class Selects, class Take>
    int takeRuns(int i, Selects selects, Take take);
    template <class Tag>
    void tagFromSourceRows(Tag tagOf);
    template <class Matches>
    int tagWhere(bool keep, Matches matches);
    template <class Question>
    int askSource(unsigned i, Question question);

    unsigned refs = 0;
    ODBViewRep* base = nullptr;
    oledb* db = nullptr;
    std::weak_ptr<const void> tableLife_;
    ViewIndex index;
    LightweightString<char> fieldSpecStr;
    LightweightString<wchar_t> filename;
    AssocList params;
    std::unique_ptr<SExpr> fields;
    const void* condition = nullptr; // always null: rows are not filtered
    const void* sortKeys = nullptr;  // always null: the index has no order of its own
    Tarn::Ptr<Tarn::Guard> dbGuard;
    Tarn::Ptr<Tarn::Guard> baseGuard;
    Following* following_ = nullptr; // the last message of deleted rows that is not followed yet

    friend OLE_API int odbViewSortFn(const void* a, const void* b);
};

/// Compares two index entries of the view that is being sorted, with the signature of `qsort`: the
/// records' order by `dbr_cmp`, or `dbr_backcmp` when descending; equal where a record is missing
/// or no view is being sorted.
OLE_API int odbViewSortFn(const void* a, const void* b);

/// A counted handle on a view. Copies count; the last handle or view built on it deletes it. The
/// table is not kept alive.
class OLE_API ODBView {
public:
    /// An empty handle.
    ODBView() noexcept = default;
    /// An empty handle.
    ODBView(std::nullptr_t) noexcept {}
    /// Counts a view, which is then owned by its handles.
    explicit ODBView(ODBViewRep* rep) noexcept;
    /// A handle on a new view on a table; it shows no rows yet.
    explicit ODBView(oledb* table);
    ///@{
    /// Share the view, or take over the other's share; a view held before is given back.
    ODBView(const ODBView& other) noexcept;
    ODBView(ODBView&& other) noexcept;
    ODBView& operator=(const ODBView& other) noexcept;
    ODBView& operator=(ODBView&& other) noexcept;
    ///@}
    /// Gives the view back.
    ~ODBView();

    /// The view, null for an empty handle; good while a handle holds it.
    [[nodiscard]] ODBViewRep* rep() const noexcept { return rep_; }
    ///@{
    /// The view, which must be there.
    ODBViewRep* operator->() const noexcept { return rep_; }
    ODBViewRep& operator*() const noexcept { return *rep_; }
    ///@}
    /// Whether the handle holds a view.
    explicit operator bool() const noexcept { return rep_ != nullptr; }

    /// A handle on a copy, see `ODBViewRep::copy`; empty for an empty handle.
    [[nodiscard]] ODBView copy() const;
    /// The same of `ODBViewRep::copyWithNewBaseView`. The new table is the caller's
    /// (`ODBViewRep::table`) and must be deleted after the last handle.
    [[nodiscard]] ODBView copyWithNewBaseView() const;

private:
    ODBViewRep* rep_ = nullptr;
};
