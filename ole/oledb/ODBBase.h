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

/// Names of message types that editors use around several changes. The module makes them and never
/// issues them.
inline constexpr char StartBatchMsg[] = "StartBatch";
inline constexpr char EndBatchMsg[] = "EndBatch";

/// What tables and views have in common: rows of text values under named, typed columns.
///
/// Row and column numbers start at 0; the all-ones number means none. Out of range gives 0, null or
/// -1, and nothing is printed. Texts handed out by pointer belong to their row or object and are
/// good until that value is next written. The order of the operations is fixed: it is the order of
/// the slots that editors are linked against. What a table does is told at `oledb`.
class OLE_API ODBBase : public virtual iObject {
public:
    ODBBase() = default;
    ODBBase(const ODBBase&) = delete;
    ODBBase& operator=(const ODBBase&) = delete;
    ~ODBBase() override;

    virtual int save_text() = 0;
    virtual int save_tags() = 0;
    virtual int insert_records(unsigned at, unsigned n) = 0;
    virtual int delete_records(unsigned from, unsigned n) = 0;
    virtual int delete_tagged_records() = 0;
    [[nodiscard]] virtual unsigned get_num_records() const = 0;
    [[nodiscard]] virtual unsigned get_num_fields() const = 0;
    [[nodiscard]] virtual dbrecord* get_record(unsigned row) const = 0;
    [[nodiscard]] virtual dbrecord* make_dummy_record() = 0;
    [[nodiscard]] virtual const char* get_field(unsigned row, int col) const = 0;
    [[nodiscard]] virtual const char* get_field(unsigned row, const char* name) const = 0;
    [[nodiscard]] virtual const char* get_fieldname(unsigned col) = 0;
    [[nodiscard]] virtual unsigned get_fieldsize(unsigned col) = 0;
    [[nodiscard]] virtual DBFieldTypes::eType get_field_type(unsigned col) = 0;
    virtual int set_fieldtype(unsigned col, DBFieldTypes::eType type) = 0;
    [[nodiscard]] virtual DBFieldTypes::eType get_fieldtype(unsigned col) = 0;
    [[nodiscard]] virtual int get_fieldnum(const char* name) const = 0;
    virtual int set_fieldname(unsigned col, const char* name) = 0;
    virtual void set_filename(LightweightString<wchar_t> path) = 0;
    [[nodiscard]] virtual LightweightString<wchar_t> get_filename() = 0;
    virtual void set_sortfield(int col) = 0;
    virtual void set_sortfields(int* cols) = 0;
    virtual void set_sort_offset(int offset) = 0;
    virtual void sort(int dir, int force) = 0;
    virtual int set_tag(unsigned row, int tag) = 0;
    virtual int invert_tag(unsigned row) = 0;
    virtual int set_all_tags(int tag) = 0;
    virtual int invert_all_tags() = 0;
    virtual int set_show_tags_only(int on) = 0;
    [[nodiscard]] virtual int get_show_tags_only() = 0;
    [[nodiscard]] virtual int get_tag(unsigned row) = 0;
    [[nodiscard]] virtual int get_num_tags() = 0;
    virtual int set_query(dbrecord* query) = 0;
    virtual int tag_matching_records(int keep) = 0;
    virtual int tag_all_different(int col) = 0;
    virtual int set_field(unsigned row, const Cookie& cookie) = 0;
    virtual int set_field(unsigned row, unsigned col, const char* text) = 0;
    virtual int set_field(unsigned row, unsigned col, int number) = 0;
    virtual int set_field(unsigned row, unsigned col, double seconds) = 0;
    virtual int set_field(unsigned row, unsigned col, bool flag) = 0;
    virtual int in_field(unsigned row, unsigned col, char* buf, int size) = 0;
    virtual int in_field(unsigned row, unsigned col, int& number) = 0;
    virtual int in_field(unsigned row, unsigned col, double& number) = 0;
    virtual int in_field(unsigned row, unsigned col, bool& flag) = 0;
    virtual int add_records(int n) = 0;
    virtual int add_param(const char* name, const char* value) = 0;
    virtual int set_param_val(const char* name, const char* value) = 0;
    [[nodiscard]] virtual const char* get_param_val(const char* name) const = 0;
    [[nodiscard]] virtual int findFirst(const char* field, const char* value, int n) = 0;
    virtual void sortPrepare(int dir, int force) = 0;
    [[nodiscard]] virtual int match_record(int row) const = 0;
    [[nodiscard]] virtual int baseIndex(int row) = 0;
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
