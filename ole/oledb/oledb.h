#pragma once

#include "ole/ole.h"
#include "ole/oledb/CookieIndex.h"
#include "ole/oledb/dbrecord.h"
#include "ole/oledb/ODBBase.h"
#include "ole/oledb/RowArray.h"
#include "ole/oledb/TextPattern.h"
#include "tarn/Cookie.h"
#include "tarn/LightweightString.h"
#include "tarn/Notifier.h"
#include "tarn/StringFunctions.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class TextFile;
class configb;

/// Why a table could not be loaded or defined as asked; see `oledb::read_error_info`.
struct dberror {
    int code =
        0; ///< 1 a row does not fill all fields, 2 unknown column type, 3 a header line is wrong
    int where =
        0; ///< code 1: rows read before; codes 2 and 3: the header line, "OLEDB" being line 1
    int aux1 = 0; ///< 0 from loading
    int aux2 = 0; ///< 0 from loading
};

/// The table: a fixed set of named, typed columns and a growable list of rows, with a tag a row, up
/// to 40 named parameters, a file name, and a row index by cookie.
///
/// The table owns its rows; it must outlive every view on it. Row pointers are good until the row
/// is deleted. Deleting rows sends "recordsDeleted" with the numbers of the deleted rows, each
/// followed by a blank; the end of an update batch sends "recordsChanged" with the changed cookies.
/// Both reach their listeners before the call returns; to listen, register with `registerInterest`
/// for a type of ole/oledb/messageTypes.h. Nothing else sends anything: inserting rows
/// is silent.
///
/// While the show-tags-only mode is on, row numbers of the interface are positions among the rows
/// that were tagged when it was switched on. Rows can then be neither inserted nor deleted, and are
/// added by `add_text` alone, behind those that are shown.
///
/// Rows and columns out of range give 0, null or -1, as each operation says, and change nothing.
/// Texts handed out by pointer are good until that value, name or parameter is next written, or its
/// owner goes. When memory runs out, std::bad_alloc passes through and the table is as it was
/// before, or, where a file was being read, not valid.
///
/// One thread at a time. R is the number of rows; costs are constant, or follow the length of a
/// text or the number of columns, where nothing is said.
class OLE_API oledb : public ODBBase, public Notifier {
public:
    static constexpr unsigned maxFields = 256; ///< the most columns of a table
    static constexpr unsigned maxParams = 40;  ///< the most parameters, the revision among them

    /// A table without columns, not valid.
    oledb();
    /// A valid table of the columns of a list that ends at type `NONE`. Null gives a table without
    /// columns.
    explicit oledb(const DBFieldDesc* fields);
    /// Loads a file, see `loadFromFile`.
    oledb(LightweightString<wchar_t> file, int maxRows, bool requireHeader);
    /// A valid copy of another table's columns and parameters, and with `withRows` of the rows that
    /// the source shows (only tagged ones in its show-tags-only mode). Tags and file name are not
    /// copied, and the copy's first parameter is always the current revision. Linear in the rows.
    oledb(const oledb& src, int withRows);
    /// A valid copy of another table's columns, followed by further ones, and of its rows, widened;
    /// without parameters. Columns beyond 256 are left out.
    oledb(const oledb& src, const DBFieldDesc* extra);
    oledb(const oledb&) = delete;
    oledb& operator=(const oledb&) = delete;
    ~oledb() override;

    // -- life --

    /// Deletes all rows, columns and parameters and sets every default, linear in the rows; the
    /// file name and the listeners stay. Views on the table are not told: they must not be used
    /// before they are filled again.
    void free();
    /// Sets every default without deleting rows: the table no longer knows them and their memory is
    /// lost, unless the caller holds them. Only for a table that has none. The file name stays.
    void init();
    /// Makes a table usable whose columns have been set: row storage, sort key, special label
    /// columns.
    void post_init();

    // -- the file (one text format; docs/format-table.md) --

    /// Replaces the table by the contents of its file, at most `maxRows` rows (0: parameters and
    /// columns only). `get_valid` tells whether that succeeded. A row that does not fit ends the
    /// loading with the rows before it, and error 1. Without `requireHeader`, a file without header
    /// is taken too: its first line names the columns. Linear in what is read.
    void loadFromFile(int maxRows, bool requireHeader);
    /// Retired. Reports a failed check, then appends at most `maxRows` rows of the table's file,
    /// its heading read as rows, and returns how many: for a file with a header and more than one
    /// column none, with error 1. Linear in the file.
    int load_text(int maxRows);
    /// Appends rows from a file's current line on, at most `maxRows`, and returns how many. Stops
    /// at a blank line, or, with error 1, at a row whose number of fields is not the table's.
    /// `skipFirst` leaves out the first line. A row whose first field is "OLEDB" is taken for a
    /// second header: it and two lines go, and the line behind them is taken in its place,
    /// unchecked, its empty fields keeping what stood there. Returns 0 when the table's capacity, a
    /// multiple of 500 rows, is used up. Linear in the rows read.
    int add_text(TextFile& file, int skipFirst, int maxRows);
    /// Reads parameter lines; leaves the line behind them in `scratch` (of 256 fields) and returns
    /// its number of fields, 0 where the file ended or broke off before.
    int read_params(TextFile& file, dbrecord* scratch);
    /// Writes one line a parameter; returns 1.
    int save_params(TextFile& file) const;
    /// Writes the header: the word, widths, types and names, or the names alone. Linear in the
    /// rows.
    int save_column_header(TextFile& file, bool namesOnly);
    /// Saves parameters, header and every row, replacing the file whole or not at all. A column
    /// "Tag" first gets each row's tag, shown or not. Returns the number of rows; 0 for a failure
    /// and for a table without rows. Linear in the rows.
    int save_text() override;
    /// The same with the names line for a header. With parameters such a file cannot be loaded
    /// again. Linear in the rows.
    int save_text_without_header();
    /// Saves parameters, header and the tagged rows only; returns 1, or 0 when that failed. Linear
    /// in the rows.
    int save_tags() override;

    // -- rows --

    /// Puts n empty rows before row `at`, behind the last for any `at` beyond it. Returns n; 0 in
    /// show-tags-only mode. Sends nothing. Linear in n and the rows between `at` and the last place
    /// where rows came or went.
    int insert_records(unsigned at, unsigned n) override;
    /// Deletes n rows from `from` on, or as many as there are. Returns how many; 0, sending
    /// nothing, for none and in show-tags-only mode. Sends "recordsDeleted". Linear in n and the
    /// rows between `from` and the last place where rows came or went; views see to themselves.
    int delete_records(unsigned from, unsigned n) override;
    /// Deletes the rows whose tag is 1, each run of them with one message; returns how many, -1 in
    /// show-tags-only mode. Listeners may change the table meanwhile. Linear in the rows; views see
    /// to themselves.
    int delete_tagged_records() override;
    /// The number of rows; in show-tags-only mode, of those shown.
    [[nodiscard]] unsigned get_num_records() const override;
    /// A row, owned by the table and good until it is deleted; null out of range.
    [[nodiscard]] dbrecord* get_record(unsigned row) const override;
    /// A new unattached record with this table's columns; the caller owns it, and it must not
    /// outlive the table.
    [[nodiscard]] dbrecord* make_dummy_record() override;
    /// Appends n empty rows and returns the number of the first, also for n < 1, which adds none;
    /// -1 in show-tags-only mode. Sends nothing. Amortised constant a row.
    int add_records(int n) override;
    /// Appends copies of the rows that another table shows and returns their number. -1 in
    /// show-tags-only mode and when revisions or columns (names, types) differ. Linear in the rows
    /// added.
    int add_oledb(oledb* other);
    /// Assigns a copy of another table's row to row `to`; nothing happens where either is missing.
    void copy_record(int to, oledb* src, int from);
    /// Assigns a record to row `to`; a null record does nothing.
    void copy_record(int to, dbrecord* record);
    /// The sum over all rows of their `get_space_used`. Linear in all texts.
    [[nodiscard]] unsigned get_space_used() const;

    // -- values --

    ///@{
    /// The text of a value; null for no such row or column.
    [[nodiscard]] const char* get_field(unsigned row, int col) const override;
    [[nodiscard]] const char* get_field(unsigned row, const char* name) const override;
    ///@}
    using ODBBase::set_field;
    /// Writes the cookie's short text form into the column "cookie" and notes the row for
    /// `getRowIndexByID`; on a table that was not asked for a row yet, the note is all that it will
    /// know until rows are inserted or deleted. 0 without such a row or column.
    int set_field(unsigned row, const Cookie& cookie) override;
    ///@{
    /// Store a value as `dbrecord::set_field` does (a text without its leading white space) and
    /// return 1; 0 for no such row or column.
    int set_field(unsigned row, unsigned col, const char* text) override;
    int set_field(unsigned row, unsigned col, int number) override;
    int set_field(unsigned row, unsigned col, double seconds) override;
    int set_field(unsigned row, unsigned col, bool flag) override;
    ///@}
    /// Copies at most `size` bytes and closes with zeros: `buf` holds size + 1 bytes, deliberately.
    /// 0 when there is no such row or column, else 1.
    int in_field(unsigned row, unsigned col, char* buf, int size) override;
    ///@{
    /// Reads the text as a number, or as true exactly when it begins with 't'. 0, leaving the
    /// argument alone, when there is no such row or column; an empty text reads as 0 or false and
    /// returns 1.
    int in_field(unsigned row, unsigned col, int& number) override;
    int in_field(unsigned row, unsigned col, double& number) override;
    int in_field(unsigned row, unsigned col, bool& flag) override;
    ///@}

    // -- columns --

    /// The number of columns.
    [[nodiscard]] unsigned get_num_fields() const override { return numFields_; }
    /// A column's name; "" out of range.
    [[nodiscard]] const char* get_fieldname(unsigned col) override;
    /// The length in bytes of the widest text of a column. Linear in the rows.
    [[nodiscard]] unsigned get_fieldsize(unsigned col) override;
    ///@{
    /// A column's type; `NONE` out of range. The second is the same as the first.
    [[nodiscard]] DBFieldTypes::eType get_field_type(unsigned col) override;
    [[nodiscard]] DBFieldTypes::eType get_fieldtype(unsigned col) override;
    ///@}
    /// Sets a type and returns 1; 0 out of range. Type `NONE` records error 2 and sets text.
    int set_fieldtype(unsigned col, DBFieldTypes::eType type) override;
    /// The column of a name, ignoring case; -1 for none. Deliberately, a name that a column once
    /// had still finds it, and of two columns with one name the one named last is found.
    [[nodiscard]] int get_fieldnum(const char* name) const override;
    /// Names a column and returns 1; 0 out of range. Every '&' is dropped unless the setting
    /// "remove_fieldname_ampersands" was 0 when the module was loaded. Null or "" clears the name.
    int set_fieldname(unsigned col, const char* name) override;
    /// Adds a column and returns its number; that of the column of this name where there is one; -1
    /// when the table has 256. Linear in the rows.
    int addField(const DBFieldDesc& field);
    /// No effect: widths follow the contents.
    void setFieldWidth(unsigned, int) {}
    /// The least width that a saved header gives a column of this name (ignoring case); 4 for
    /// unknown names.
    [[nodiscard]] static unsigned getMinFieldSize(const char* name);
    /// Whether the column counts, and names and their order are another table's, to the letter.
    [[nodiscard]] bool sameColumns(oledb* other) const;

    // -- file name, parameters, errors --

    ///@{
    /// The path that loading and saving use.
    void set_filename(LightweightString<wchar_t> path) override;
    [[nodiscard]] LightweightString<wchar_t> get_filename() override;
    ///@}
    /// Sets a parameter (names ignore case) and returns 0. An empty list first gets the revision,
    /// "OLEDB" with "Rev 1", whose value can be replaced like any other. -1 for a null name or
    /// value, an empty name, the name "OLEDB" where it does not exist yet, and for a 41st
    /// parameter.
    int add_param(const char* name, const char* value) override;
    /// The same as `add_param`.
    int set_param_val(const char* name, const char* value) override;
    /// The value of a parameter, null for none; good until it is set again.
    [[nodiscard]] const char* get_param_val(const char* name) const override;
    /// The position of a parameter, -1 for none.
    [[nodiscard]] int find_param(const char* name) const;
    /// The number of parameters, the revision among them.
    [[nodiscard]] unsigned get_num_params() const noexcept {
        return static_cast<unsigned>(params_.size());
    }
    ///@{
    /// Name and value of parameter i, null out of range.
    [[nodiscard]] const char* get_param_name(unsigned i) const noexcept;
    [[nodiscard]] const char* get_param_value(unsigned i) const noexcept;
    ///@}
    /// Records an error for `read_error_info`; see `dberror`.
    void fill_error_info(int code, int where, int aux1, int aux2);
    /// The last error of loading or defining the table; false when there was none. A valid table
    /// may have one.
    [[nodiscard]] bool read_error_info(dberror& error) const;

    // -- tags --

    ///@{
    /// Stores the low byte of `tag`, so that 256 is no tag, or turns the tag over, and returns 1; 0
    /// for no such row.
    int set_tag(unsigned row, int tag) override;
    int invert_tag(unsigned row) override;
    ///@}
    /// `set_tag` for every number below the row count, so in show-tags-only mode for the shown rows
    /// only. Returns how many were set. Linear in the rows.
    int set_all_tags(int tag) override;
    /// Inverts every row's tag, shown or not; returns the number of rows. Linear in the rows.
    int invert_all_tags() override;
    /// Switches the mode. Switching on takes the rows that are tagged now and returns their number;
    /// switching off returns 0. Linear in the rows.
    int set_show_tags_only(int on) override;
    /// What the mode was set to; 0 for off.
    [[nodiscard]] int get_show_tags_only() override { return showTagsOnly_; }
    /// The row's tag, -1 for no such row.
    [[nodiscard]] int get_tag(unsigned row) override;
    /// How many of the rows that the interface shows are tagged now. Linear in the rows.
    [[nodiscard]] int get_num_tags() override;
    /// Fills the tag index with the rows that are tagged now. Linear in the rows.
    void index_tags();
    ///@{
    /// The number that the interface uses for a row of the storage, and the other way round; the
    /// same while show-tags-only is off; all ones for none. The position just behind the last
    /// tagged row is deliberately not refused: an earlier index may have left a row there. Linear
    /// in the rows while the mode is on.
    [[nodiscard]] unsigned get_new_row(unsigned raw) const;
    [[nodiscard]] unsigned get_raw_row(unsigned row) const;
    ///@}

    // -- cookies, batches, changes --

    /// The row whose column "cookie" holds a cookie (the first of several), or -1. Builds an index
    /// of all rows at first use and again after rows were inserted, deleted or sorted, or the
    /// show-tags-only mode was switched: linear then, constant otherwise. An index that names any
    /// row does not notice what is written to the column as text.
    [[nodiscard]] int getRowIndexByID(const Cookie& cookie) const;
    /// Opens a batch of updates; batches nest.
    void beginUpdate();
    /// Notes a changed row. Outside a batch the note is dropped by the next `beginUpdate`.
    void addToUpdate(const Cookie& cookie);
    /// Closes a batch; the outermost sends "recordsChanged" with the noted cookies, if any, as
    /// `WrappedData<CookieVec>`. Without a batch nothing happens.
    void endUpdate();
    /// `dbrecord::update` of a row; notes its cookie. False for no such row or when nothing was
    /// set.
    bool update(configb* cfg, int row);
    /// Clears the changed flags of table and rows; returns the row count. Linear in the rows.
    int clear_changed();
    /// 1 when values, rows or parameters changed since the table was loaded or the flag was
    /// cleared.
    [[nodiscard]] int get_changed() const noexcept { return changed_; }
    /// When the table was made or a row was last read from a file: seconds since 1970.
    [[nodiscard]] long long get_modified_time() const noexcept { return modifiedTime_; }
    /// The revision of the format that the table was loaded from; 1 for a new table.
    [[nodiscard]] int get_revision() const noexcept { return revision_; }
    /// Row slots, as callers may count on them: grows by 500.
    [[nodiscard]] unsigned get_capacity() const noexcept { return rows_.capacity(); }
    /// The columns that a load without header took for timecodes, ended by -1 (all ones);
    /// nothing at all for a table that was not loaded.
    [[nodiscard]] const std::vector<unsigned>& get_timecode_columns() const noexcept {
        return timecodeColumns_;
    }
    /// Does nothing.
    void timecode_check(const char*) {}

    // -- order --

    /// Sorts by one column from now on.
    void set_sortfield(int col) override;
    /// Sorts by a list of columns that ends at the first negative entry. The list stays the
    /// caller's and must live as long as it is in use; `sortPrepare` writes -1 over columns that do
    /// not exist. Null means the table's own list.
    void set_sortfields(int* cols) override;
    /// Compares from this character on; with a negative offset the last characters, or, where a
    /// sort is forced to the normal order, the whole text.
    void set_sort_offset(int offset) override;
    /// Makes this table's keys the ones that the comparison functions use, everywhere in the
    /// process.
    void sortPrepare(int dir, int force) override;
    /// Sorts all rows, ascending for dir >= 0 (`dbr_cmp`), else descending (`dbr_backcmp`), which
    /// is not simply the reverse. Rows that compare equal keep their order. Sends nothing: views on
    /// the table show other rows afterwards. R log R comparisons at most; further memory of 38
    /// bytes a row while it runs, and up to 56 more for keys of more than eight bytes.
    void sort(int dir, int force) override;

    // -- search --

    /// The first row (of all rows) whose column holds a text; with n > 0 only the first n bytes
    /// count. For the column "cookie" the index is asked first. -1 for none. Linear in the rows.
    [[nodiscard]] int findFirst(const char* field, const char* value, int n) override;
    /// For each cookie the row that `findFirst` finds for its short text form in the column
    /// "cookie", -1 for none. Linear in the rows once, and in the cookies.
    [[nodiscard]] std::vector<int> findFirstOfEach(const std::vector<Cookie>& cookies);
    /// Sets the query record, whose non-empty values are patterns, and returns its number of
    /// values. It must outlive its use. One with fewer values than columns is not taken. Null
    /// clears the query and gives 0.
    int set_query(dbrecord* query) override;
    /// Tags the rows that match the query and, unless `keep`, takes the tags of the others; returns
    /// the number of matches. Deliberately, in show-tags-only mode the numbers beyond the shown
    /// rows count as matches. 0 without a query or rows. Linear in the rows.
    int tag_matching_records(int keep) override;
    /// Sorts by a column and tags the first row of every run of equal values (ignoring case);
    /// returns the number of tags. A leading run of empty values gets none, and values over 255
    /// bytes are all tagged. R log R comparisons.
    int tag_all_different(int col) override;
    /// 1 when a row matches the query, 0 when not, -1 for no such row or no query.
    [[nodiscard]] int match_record(int row) const override;
    /// Whether one value matches the query's.
    [[nodiscard]] int match_field(const dbrecord* record, int col) const;
    /// Whether a column is, by its exact name, one of the six start and end pairs that queries
    /// search as ranges.
    [[nodiscard]] bool isSpecialLabelField(unsigned long col) const;
    /// Whether the query value of a special label column is the beginning of the row's start or
    /// lies between its start and end, compared at the query's length.
    [[nodiscard]] int found_in_special_label_field(const dbrecord* record, int col) const;
    /// Whether a pattern occurs in a text. '?' stands for any character; case counts only with
    /// `caseSensitiveSearch`, and `wholeWordSearch` asks for word breaks around the find.
    /// Deliberately naive: after a failed attempt the search goes on at the character that failed,
    /// so aab is not found in aaab. With `tc`, punctuation marks match one another after a matched
    /// pair other than the first.
    [[nodiscard]] int found_in(const char* text, const char* pattern, int tc) const;
    /// Returns p and moves it on, unless it stands at the terminating zero.
    static const char* safePostInc(const char*& p) { return *p ? p++ : p; }

    /// Adds a row for every row of another table and fills the columns that both have, timecodes
    /// converted between their two forms, a value that is no timecode becoming "". 0 when no column
    /// is shared, else 1. Linear in the rows added.
    int merge_all_matching(oledb* other);

    /// A table is its own base: returns its argument.
    [[nodiscard]] int baseIndex(int row) override { return row; }
    /// 1 when construction or loading succeeded.
    [[nodiscard]] int get_valid() const override { return valid_; }
    /// Expires when the table is destroyed: what holds a table without owning it can ask.
    [[nodiscard]] std::weak_ptr<const void> life() const noexcept { return life_; }

    int caseSensitiveSearch = 0; ///< 1: queries tell case; no operation sets it
    int wholeWordSearch = 0;     ///< 1: queries find whole words only; no operation sets it

private:
    friend class dbrecord;
    friend class PreparedQuery;

    static constexpr int currentRevision = 1;
    static constexpr const char* cookieField = "cookie";

    class QueryTerm;
    struct Param {
        LightweightString<char> name;
        LightweightString<char> value;
    };

    void setDefaults();
    unsigned takeFields(const DBFieldDesc* fields, unsigned firstCol);
    void copyFieldsFrom(const oledb& src);
    void copyRowsFrom(const oledb& src);
    template <class Make>
    void appendRows(unsigned n, Make make);
    int deleteTaggedRuns();
    int deleteTaggedUnheard();
    void setFieldCount(unsigned n);
    [[nodiscard]] std::unique_ptr<dbrecord> newRow();
    [[nodiscard]] std::unique_ptr<dbrecord> copyOfRow(const dbrecord& src);
    void forgetCookies() const noexcept;
    void noteCookie(const Cookie& cookie, unsigned row);
    void rowWritten(int slot) noexcept;
    void rowRead() noexcept;

    void loadFromText(TextFile& file, int maxRows, bool requireHeader);
    bool readHeader(TextFile& file, dbrecord& scratch, int fieldsFound, bool requireHeader);
    void takeFieldCount(int found);
    bool readColumns(TextFile& file, dbrecord& scratch);
    [[nodiscard]] std::vector<unsigned> widestValues();
    void takeHeaderlessColumns(const dbrecord& scratch, int fieldsFound);
    void nameColumns(const dbrecord& scratch);
    bool replaceHeadingLines(TextFile& file, dbrecord& row, bool leaveOutFirst);
    bool rowFillsFields(const dbrecord& row, int appended);
    void storeLoadedParam(const char* line);
    void readRevision(const char* line);
    void writeTagColumn();
    bool saveRows(bool namesOnly, bool taggedOnly);
    void buildCookieIndex() const;
    void fillCookieIndex(CookieIndex& index, int col, unsigned n) const;
    [[nodiscard]] std::vector<int> firstRowsOf(const std::vector<LightweightString<char>>& texts,
                                               int col) const;
    [[nodiscard]] bool equalColumns(const oledb& other) const;
    void computeSpecialLabels();
    [[nodiscard]] std::vector<QueryTerm> queryTerms() const;
    [[nodiscard]] TextPattern patternOf(const char* text, bool timecode) const noexcept;
    template <class Matches>
    int tagRows(bool keep, Matches matches);

    int revision_ = 1;
    std::array<LightweightString<char>, maxFields> fieldNames_;
    std::array<DBFieldTypes::eType, maxFields> fieldTypes_{};
    unsigned numFields_ = 0;
    RowArray rows_;
    std::vector<dbrecord*> tagIndex_; // entries beyond the tagged count are from earlier
    std::vector<Param> params_;
    LightweightString<wchar_t> filename_;
    std::array<int, 2> sortFieldPair_{0, -1};
    int* sortFields_ = sortFieldPair_.data();
    int sortOffset_ = 0;
    dbrecord* query_ = nullptr;
    int showTagsOnly_ = 0;
    unsigned taggedCount_ = 0;
    std::vector<unsigned> timecodeColumns_;
    bool errorPresent_ = false;
    dberror error_;
    int changed_ = 0;
    long long modifiedTime_ = 0;
    CookieVec pendingCookies_;
    unsigned updateDepth_ = 0;
    mutable CookieIndex cookieIndex_;
    mutable bool noCookieFound_ =
        false; // the index was built and is empty; a cookie written as text ends that
    std::map<LightweightString<char>, unsigned, StrCmpCI> fieldNameMap_;
    std::vector<bool> specialLabels_;
    int valid_ = 0;
    std::shared_ptr<const char> life_ = std::make_shared<const char>();
};

/// A copy of a text without every occurrence of a character; null gives a null string.
OLE_API LightweightString<char> strip_char_from_string(char c, const char* text);
