#pragma once

#include "ole/ole.h"
#include "ole/oledb/DBFieldTypes.h"
#include "tarn/iObject.h"
#include "tarn/LightweightString.h"

#include <concepts>
#include <string>
#include <type_traits>

class Cookie;
class dbrecord;

///@{
/// Names of message types that editors use around several changes. The module makes them and never
/// issues them.
inline constexpr char StartBatchMsg[] = "StartBatch";
inline constexpr char EndBatchMsg[] = "EndBatch";
///@}

/// What tables and views have in common: rows of text values under named, typed columns.
///
/// Row and column numbers start at 0; the all-ones number means none. Out of range gives 0, null or
/// -1, and nothing is printed. Texts handed out by pointer belong to their row or object and are
/// good until that value is next written. The order of the operations is fixed: it is the order of
/// the slots that editors are linked against.
///
/// Here stands what holds for both. What a table does in detail, and at which cost, is told at
/// `oledb`; where a view does something else, at `ODBViewRep`, and side by side in
/// docs/embedding.md.
class OLE_API ODBBase : public virtual iObject {
public:
    ODBBase() = default;
    ODBBase(const ODBBase&) = delete;
    ODBBase& operator=(const ODBBase&) = delete;
    ~ODBBase() override;

    /// Saves everything to the file that `set_filename` named, in the format of table files.
    /// Returns the number of rows saved; 0 for none and for a failure.
    virtual int save_text() = 0;
    /// Saves to the same file the rows that are tagged in the table. Returns 0 on failure; a view
    /// also where it shows nothing.
    virtual int save_tags() = 0;
    /// Puts n empty rows before row `at`, behind the last for a number beyond it. Returns n, or 0
    /// where rows are refused. Tells nobody: who keeps row numbers must number them anew.
    virtual int insert_records(unsigned at, unsigned n) = 0;
    /// Deletes n rows of the table from `from` on, or as many as there are, and sends
    /// "recordsDeleted". Returns how many.
    virtual int delete_records(unsigned from, unsigned n) = 0;
    /// Takes the tagged rows out. A table deletes them and returns how many; a view leaves them in
    /// the table and returns 0.
    virtual int delete_tagged_records() = 0;
    /// The number of rows, or of a view's entries.
    [[nodiscard]] virtual unsigned get_num_records() const = 0;
    /// The number of columns.
    [[nodiscard]] virtual unsigned get_num_fields() const = 0;
    /// A row, owned by the table and good until it is deleted there; null out of range.
    [[nodiscard]] virtual dbrecord* get_record(unsigned row) const = 0;
    /// A new record with the table's columns that is no row of it: a query, or values to be copied.
    /// The caller owns it, and it must not outlive the table. Null without a table.
    [[nodiscard]] virtual dbrecord* make_dummy_record() = 0;
    ///@{
    /// A value's text, good until it is next written; null for no such row or column.
    [[nodiscard]] virtual const char* get_field(unsigned row, int col) const = 0;
    [[nodiscard]] virtual const char* get_field(unsigned row, const char* name) const = 0;
    ///@}
    /// A column's name; "" out of range, null for a view without a table.
    [[nodiscard]] virtual const char* get_fieldname(unsigned col) = 0;
    /// The length in bytes of the longest value of a column, in all of the table.
    [[nodiscard]] virtual unsigned get_fieldsize(unsigned col) = 0;
    /// A column's type; `NONE` out of range.
    [[nodiscard]] virtual DBFieldTypes::eType get_field_type(unsigned col) = 0;
    /// Sets a column's type, in the table and so for all its views. Returns 1; 0 out of range.
    virtual int set_fieldtype(unsigned col, DBFieldTypes::eType type) = 0;
    /// The same as `get_field_type`.
    [[nodiscard]] virtual DBFieldTypes::eType get_fieldtype(unsigned col) = 0;
    /// The number of the column of a name, ignoring case; -1 for none.
    [[nodiscard]] virtual int get_fieldnum(const char* name) const = 0;
    /// Names a column, in the table and so for all its views. Returns 1; 0 out of range.
    virtual int set_fieldname(unsigned col, const char* name) = 0;
    /// Sets the file that saving writes to, and that a table is loaded from. A view has its own.
    virtual void set_filename(LightweightString<wchar_t> path) = 0;
    /// The file that was set; "" for none.
    [[nodiscard]] virtual LightweightString<wchar_t> get_filename() = 0;
    /// Has the table, and the views on it, sorted by one column from now on.
    virtual void set_sortfield(int col) = 0;
    /// The same by a list of columns that ends at a negative number. The list stays the caller's
    /// and must live as long as it is in use.
    virtual void set_sortfields(int* cols) = 0;
    /// Has keys compared from this character on; with a negative offset only so many characters at
    /// their end.
    virtual void set_sort_offset(int offset) = 0;
    /// Puts the rows in order, ascending for dir >= 0. `force` other than 0 compares as texts
    /// ignoring case instead of naturally. Sends nothing.
    virtual void sort(int dir, int force) = 0;
    ///@{
    /// Sets a row's tag, or turns it over, and returns 1; 0 for no such row. A table keeps the low
    /// byte of the number, a view, whose tags are its own, 0 or 1.
    virtual int set_tag(unsigned row, int tag) = 0;
    virtual int invert_tag(unsigned row) = 0;
    ///@}
    /// Tags every row with 0 or 1; returns how many.
    virtual int set_all_tags(int tag) = 0;
    /// Turns every row's tag over; returns how many.
    virtual int invert_all_tags() = 0;
    /// A table shows its tagged rows alone, or all again, and returns how many are tagged; a view
    /// gives up its untagged entries for good and returns how many those were.
    virtual int set_show_tags_only(int on) = 0;
    /// Whether a table shows its tagged rows alone; 0 for a view.
    [[nodiscard]] virtual int get_show_tags_only() = 0;
    /// The tag of a row; out of range -1 from a table, 0 from a view.
    [[nodiscard]] virtual int get_tag(unsigned row) = 0;
    /// The number of tagged rows.
    [[nodiscard]] virtual int get_num_tags() = 0;
    /// Sets the record whose values that are not empty are searched for, in the table and so for
    /// all its views; null for none. It stays the caller's and must live as long as it is in use.
    /// Returns its number of values; one with fewer values than columns is not taken.
    virtual int set_query(dbrecord* query) = 0;
    /// Tags the rows that match the query and, unless `keep`, takes the tags of the others; a view
    /// takes them in any case. Returns the number of matches.
    virtual int tag_matching_records(int keep) = 0;
    /// Tags one row of each value of a column, ignoring case; returns the number of tags. A table
    /// is sorted by the column afterwards, a view is not.
    virtual int tag_all_different(int col) = 0;
    ///@{
    /// Stores a value in the table and returns 1; 0 for no such row or column. A cookie goes to the
    /// column "cookie", in its short form; a text loses its leading white space, a number is
    /// written in decimal, seconds with eight decimals, a flag as "t" or "f".
    virtual int set_field(unsigned row, const Cookie& cookie) = 0;
    virtual int set_field(unsigned row, unsigned col, const char* text) = 0;
    virtual int set_field(unsigned row, unsigned col, int number) = 0;
    virtual int set_field(unsigned row, unsigned col, double seconds) = 0;
    virtual int set_field(unsigned row, unsigned col, bool flag) = 0;
    ///@}
    ///@{
    /// Reads a value and returns 1; 0, leaving the argument alone, for no such row or column. Of a
    /// text at most `size` bytes are copied and a zero byte is put behind them: `buf` holds
    /// size + 1. Numbers are what the text begins with, a flag is true where it begins with 't'.
    virtual int in_field(unsigned row, unsigned col, char* buf, int size) = 0;
    virtual int in_field(unsigned row, unsigned col, int& number) = 0;
    virtual int in_field(unsigned row, unsigned col, double& number) = 0;
    virtual int in_field(unsigned row, unsigned col, bool& flag) = 0;
    ///@}
    /// Appends n empty rows and returns the number of the first; -1 from a table that refuses rows.
    /// Tells nobody.
    virtual int add_records(int n) = 0;
    /// Sets a parameter, a text with a name, and returns 0; -1 from a table that refuses it.
    virtual int add_param(const char* name, const char* value) = 0;
    /// The same as `add_param`.
    virtual int set_param_val(const char* name, const char* value) = 0;
    /// The value of a parameter, good until it is set again. For none, null from a table and ""
    /// from a view.
    [[nodiscard]] virtual const char* get_param_val(const char* name) const = 0;
    /// The *table's* first row whose column holds a text, case counting; with n > 0 only the first
    /// n bytes are compared, but by tables alone. -1 for none.
    [[nodiscard]] virtual int findFirst(const char* field, const char* value, int n) = 0;
    /// Makes the table's keys those of the comparison functions (dbsort.h), in all of the process.
    virtual void sortPrepare(int dir, int force) = 0;
    /// 1 when a row matches the query, 0 when not, -1 for no such row or no query. A view hands its
    /// position on as the number of the row below.
    [[nodiscard]] virtual int match_record(int row) const = 0;
    /// The number of the table's row behind a row of this.
    [[nodiscard]] virtual int baseIndex(int row) = 0;
    /// 1 when the table was made from columns or loaded from its file, else 0.
    [[nodiscard]] virtual int get_valid() const = 0;

    /// Stores any other kind of whole number in decimal, so that none is mistaken for a flag.
    template <std::integral Number>
    requires(!std::same_as<Number, int> &&
             !std::same_as<Number, bool>) int set_field(unsigned row, unsigned col, Number number) {
        return set_field(row, col, std::to_string(number).c_str());
    }
    /// Pointers to anything but text are no values.
    template <class Other>
    requires(!std::same_as<std::remove_cv_t<Other>, char>) int set_field(unsigned row, unsigned col,
                                                                         Other* pointer) = delete;
};
