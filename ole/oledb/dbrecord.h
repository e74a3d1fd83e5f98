#pragma once

#include "ole/ole.h"
#include "ole/oledb/DBFieldTypes.h"
#include "ole/oledb/ValueSlots.h"
#include "tarn/LightweightString.h"

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

class TextFile;
class StringList;
class configb;
class oledb;
class RecentValues;
namespace Tarn {
class LineBuffer;
}

/// One row: an array of text values, one a column.
///
/// Two counts are kept apart on purpose. `size` is the number of slots and bounds writing;
/// `nfields` is the number of values in use and bounds reading. Only construction and
/// `resizeRecord` set `size`; assignment and `read` lower `nfields` to what they were given, and a
/// table refuses loaded rows whose `nfields` is not its column count. So a slot at or beyond
/// `nfields` can be written, and the value is not seen by `get_field`.
///
/// Values are shared counted strings, so copying a record copies no text. Every successful write
/// sets the record's changed flag, and its table's where it has one, also when the value is the
/// same as before.
class OLE_API dbrecord {
public:
    /// The type list of records that are made without one: 256 times `NONE`, never written.
    static DBFieldTypes::eType def_types[256];

    /// An unattached record of n empty slots.
    explicit dbrecord(unsigned short n);
    /// The same with a list of types that is not copied and must outlive its use; null means
    /// `def_types`.
    dbrecord(unsigned short n, DBFieldTypes::eType* types);
    /// A copy with n slots (0: as many as the source has), all of them in use, whatever the
    /// source's `nfields` is. Container and tag are deliberately not copied. `types` stays the
    /// source's list: it dangles when that table dies, until the copy is attached to one.
    dbrecord(const dbrecord& src, unsigned short n);
    /// The same with as many slots as the source has.
    dbrecord(const dbrecord& src) : dbrecord{src, 0} {}
    /// Takes over the source's values, at most as many as there are slots here, each without its
    /// leading white space; `nfields` becomes the number of values taken. Slots beyond keep their
    /// old text, and container, types, size and tag stay.
    dbrecord& operator=(const dbrecord& src);
    ~dbrecord();

    ///@{
    /// Records on the heap stand close together, in memory of their own.
    // The check overlooks that a deletion may be told the size.
    // NOLINTNEXTLINE(misc-new-delete-overloads,cert-dcl54-cpp)
    static void* operator new(std::size_t bytes) { return Tarn::BlockMemory::allocate(bytes); }
    static void operator delete(void* record, std::size_t bytes) noexcept {
        Tarn::BlockMemory::release(record, bytes);
    }
    ///@}
    ///@{
    /// In memory of the caller's.
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void*, void*) noexcept {}
    ///@}

    /// Stores a text in slot i and returns 1; 0 when i is negative or not below `size`. Null stores
    /// as "". With `skipBlanks`, leading ASCII white space is dropped. A text that comes out empty
    /// leaves a null slot null. Trailing blanks stay. The text may point into the slot itself.
    int set_field(int i, const char* s, bool skipBlanks = true);
    /// As `set_field` with `skipBlanks`, but a text without leading white space is shared, not
    /// copied.
    int set_string(int i, LightweightString<char> text);
    /// Stores a number in decimal.
    int set_field(int i, int v);
    /// Stores a time in seconds with eight decimals. The invalid time 1e99 is reported on standard
    /// output and stored like any other number.
    int set_field(int i, double d);
    /// Stores "t" or "f".
    int set_field(int i, bool b);
    /// Stores any other kind of whole number in decimal, so that none is mistaken for a flag.
    template <std::integral Number>
    requires(!std::same_as<Number, int> && !std::same_as<Number, bool>) int set_field(int i,
                                                                                      Number v) {
        return set_field(i, std::to_string(v).c_str());
    }
    /// Pointers to anything but text are no values.
    template <class Other>
    requires(!std::same_as<std::remove_cv_t<Other>, char>) int set_field(
        int i, Other* pointer, bool skipBlanks = true) = delete;

    /// Makes every slot empty. Counts, flags and tag stay; the record does not count as changed.
    void clear();
    /// Makes n slots, all in use; new ones are empty, those beyond n are dropped. Does nothing when
    /// n is negative, above 65535, or `widths` is null. The widths themselves and the flag are not
    /// read.
    void resizeRecord(int n, int* widths, bool);
    /// Does nothing.
    void resizeField(int, int);
    /// Fills the values in use from a list, those beyond its end with "".
    void setFromStringList(const StringList& list);

    /// The text of slot i, "" for an empty one; null when i is not below `nfields`. Good until the
    /// slot is next written, wherever the record or the slot moves meanwhile.
    [[nodiscard]] const char* get_field(unsigned short i) const;
    /// The string of slot i; one shared empty string when i is not below `nfields`.
    [[nodiscard]] const LightweightString<char>& getField(unsigned short i) const {
        return i < nfields_ && i < values_.size() ? values_[i] : emptyValue();
    }
    /// Copies at most `len` bytes of slot i to `dst` and fills it with zero bytes up to and
    /// including dst[len]: `dst` holds len + 1 bytes. Bounded by the slots, not by `nfields`.
    /// Returns 1; 0, touching nothing, when there is no such slot, `dst` is null or `len` is
    /// negative.
    int in_field(int i, char* dst, int len) const;
    /// 1 when no value in use holds text, else 0. A blank is text. Linear in the columns.
    [[nodiscard]] int is_blank() const;
    /// The number of slots times the sum of all texts' lengths plus one each: deliberately a
    /// product. Wraps at 32 bits.
    [[nodiscard]] unsigned get_space_used() const;
    /// Appends the values in use to a list, which owns its new elements.
    void asStringList(StringList& out) const;

    /// Attaches the record to a table, which is not owned, or with null to none. An attached row
    /// takes its types from the table. Does not put the record among the table's rows.
    void set_container(oledb* container);
    /// The table that the row belongs to, null for none.
    [[nodiscard]] oledb* get_container() const noexcept { return container_; }

    /// Takes the file's next line as this row and returns the number of fields found, which becomes
    /// `nfields`. An empty field leaves what its slot held. 0, with no value changed, at a blank
    /// line (which is passed over) and at the end of the file. At most 4095 bytes of the line are
    /// used. A line with more fields than slots, or with a ',' at its end, gives one field more
    /// than was stored.
    int read(TextFile& file);
    /// Appends the values in use to a file as one line, clears the changed flag and returns 1.
    int write(TextFile& file) const;

    /// Copies values into a configuration block: the column "name" under two keys and the known
    /// columns under theirs. Returns how many known columns were set, not counting the name; 0,
    /// setting nothing, for a row without a table or a table without a column "name".
    int update(configb* cfg) const;

    /// The number of slots.
    [[nodiscard]] unsigned short size() const noexcept { return size_; }
    /// The number of values in use.
    [[nodiscard]] unsigned short nfields() const noexcept { return nfields_; }
    /// 1 when a value was written or read since the record was last written to a file.
    [[nodiscard]] int changed() const noexcept { return changed_; }
    /// The row's tag, which its table's operations set. Views have tags of their own.
    [[nodiscard]] unsigned char tag() const noexcept { return tag_; }
    /// The types of the columns; not owned, good while the table lives that they come from.
    [[nodiscard]] const DBFieldTypes::eType* types() const noexcept { return types_; }

private:
    friend class oledb;

    static const LightweightString<char>& emptyValue();
    void storeText(std::size_t slot, std::string_view text);
    void noteChanged(int slot);
    /// `read` for one of many rows, which share their equal values; the caller tells the table.
    /// False where there is no line.
    bool readOneOfMany(TextFile& file, RecentValues& recent);
    template <class StringOf>
    bool readLine(TextFile& file, StringOf stringOf);
    /// Raises each column's width to that of its value here.
    void widen(std::vector<unsigned>& widths) const;
    /// `write` with a line buffer that a caller reuses over many rows.
    int writeLine(TextFile& file, Tarn::LineBuffer& line) const;

    oledb* container_ = nullptr;
    ValueSlots values_;
    DBFieldTypes::eType* types_ = def_types;
    unsigned short size_ = 0;
    unsigned short nfields_ = 0;
    mutable unsigned char changed_ = 0;
    unsigned char tag_ = 0;
};
