// What a view does for each operation of the interface that it shares with tables. Field numbers
// pass on as they are; positions are translated to rows of the source.

#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"

#include <utility>

// -- rows and tags --

int ODBViewRep::save_text() {
    return saveAsText(filename, false);
}

int ODBViewRep::save_tags() {
    return saveOnlyTagged(filename);
}

int ODBViewRep::insert_records(unsigned at, unsigned n) {
    return insertBlankRecords(static_cast<int>(at), static_cast<int>(n));
}

int ODBViewRep::delete_records(unsigned from, unsigned n) {
    return deleteRecords(static_cast<int>(from), static_cast<int>(n));
}

int ODBViewRep::delete_tagged_records() {
    removeSome(&ODBViewRep::tag);
    return 0;
}

int ODBViewRep::add_records(int n) {
    const int first = index.numIndex();
    insertBlankRecords(first, n);
    return source() ? first : 0;
}

unsigned ODBViewRep::get_num_records() const {
    return static_cast<unsigned>(count());
}

dbrecord* ODBViewRep::get_record(unsigned i) const {
    return (*this)[static_cast<int>(i)];
}

dbrecord* ODBViewRep::make_dummy_record() {
    return table() ? db->make_dummy_record() : nullptr;
}

int ODBViewRep::set_tag(unsigned i, int v) {
    if (!source() || !isPosition(static_cast<int>(i))) {
        return 0;
    }
    index[static_cast<int>(i)].tag = v != 0 ? 1 : 0;
    return 1;
}

int ODBViewRep::invert_tag(unsigned i) {
    return set_tag(i, notTagged(static_cast<int>(i)) ? 1 : 0);
}

int ODBViewRep::set_all_tags(int v) {
    return tagAll(v != 0);
}

int ODBViewRep::invert_all_tags() {
    return invertAllTags();
}

int ODBViewRep::set_show_tags_only(int) {
    return removeSome(&ODBViewRep::notTagged);
}

int ODBViewRep::get_show_tags_only() {
    return 0;
}

int ODBViewRep::get_tag(unsigned i) {
    return tag(static_cast<int>(i)) ? 1 : 0;
}

int ODBViewRep::get_num_tags() {
    return countTags();
}

int ODBViewRep::tag_matching_records(int) {
    return tagMatches(0);
}

int ODBViewRep::tag_all_different(int field) {
    tagDuplicates(field);
    invertAllTags();
    return get_num_tags();
}

// -- values --

const char* ODBViewRep::get_field(unsigned i, int f) const {
    const dbrecord* const record = get_record(i);
    return record ? record->get_field(static_cast<unsigned short>(f)) : nullptr;
}

const char* ODBViewRep::get_field(unsigned i, const char* name) const {
    const dbrecord* const record = get_record(i);
    const int f = record ? source()->get_fieldnum(name) : -1;
    return f < 0 ? nullptr : record->get_field(static_cast<unsigned short>(f));
}

/// What the source answers about the row that a position shows; 0 where it shows none.
template <class Question>
int ODBViewRep::askSource(unsigned i, Question question) {
    ODBBase* const from = source();
    const int position = static_cast<int>(i);
    return from && isPosition(position) ? question(*from, index[position].row) : 0;
}

int ODBViewRep::set_field(unsigned r, const Cookie& cookie) {
    return askSource(r, [&](ODBBase& from, unsigned row) { return from.set_field(row, cookie); });
}

int ODBViewRep::set_field(unsigned r, unsigned f, const char* text) {
    return askSource(r, [=](ODBBase& from, unsigned row) { return from.set_field(row, f, text); });
}

int ODBViewRep::set_field(unsigned r, unsigned f, int number) {
    return askSource(r,
                     [=](ODBBase& from, unsigned row) { return from.set_field(row, f, number); });
}

int ODBViewRep::set_field(unsigned r, unsigned f, double seconds) {
    return askSource(r,
                     [=](ODBBase& from, unsigned row) { return from.set_field(row, f, seconds); });
}

int ODBViewRep::set_field(unsigned r, unsigned f, bool flag) {
    return askSource(r, [=](ODBBase& from, unsigned row) { return from.set_field(row, f, flag); });
}

int ODBViewRep::in_field(unsigned r, unsigned f, char* buf, int size) {
    return askSource(r,
                     [=](ODBBase& from, unsigned row) { return from.in_field(row, f, buf, size); });
}

int ODBViewRep::in_field(unsigned r, unsigned f, int& number) {
    return askSource(r, [&](ODBBase& from, unsigned row) { return from.in_field(row, f, number); });
}

int ODBViewRep::in_field(unsigned r, unsigned f, double& number) {
    return askSource(r, [&](ODBBase& from, unsigned row) { return from.in_field(row, f, number); });
}

int ODBViewRep::in_field(unsigned r, unsigned f, bool& flag) {
    return askSource(r, [&](ODBBase& from, unsigned row) { return from.in_field(row, f, flag); });
}

// -- fields, forwarded --

unsigned ODBViewRep::get_num_fields() const {
    const ODBBase* const from = source();
    return from ? from->get_num_fields() : 0;
}

const char* ODBViewRep::get_fieldname(unsigned f) {
    ODBBase* const from = source();
    return from ? from->get_fieldname(f) : nullptr;
}

unsigned ODBViewRep::get_fieldsize(unsigned f) {
    ODBBase* const from = source();
    return from ? from->get_fieldsize(f) : 0;
}

DBFieldTypes::eType ODBViewRep::get_field_type(unsigned f) {
    ODBBase* const from = source();
    return from ? from->get_field_type(f) : DBFieldTypes::NONE;
}

int ODBViewRep::set_fieldtype(unsigned f, DBFieldTypes::eType type) {
    ODBBase* const from = source();
    return from ? from->set_fieldtype(f, type) : 0;
}

DBFieldTypes::eType ODBViewRep::get_fieldtype(unsigned f) {
    return get_field_type(f);
}

int ODBViewRep::get_fieldnum(const char* name) const {
    const ODBBase* const from = source();
    return from ? from->get_fieldnum(name) : 0;
}

int ODBViewRep::set_fieldname(unsigned f, const char* name) {
    ODBBase* const from = source();
    return from ? from->set_fieldname(f, name) : 0;
}

// -- keys and queries, forwarded --

void ODBViewRep::set_sortfield(int f) {
    if (ODBBase* const from = source()) {
        from->set_sortfield(f);
    }
}

void ODBViewRep::set_sortfields(int* list) {
    if (ODBBase* const from = source()) {
        from->set_sortfields(list);
    }
}

void ODBViewRep::set_sort_offset(int offset) {
    if (ODBBase* const from = source()) {
        from->set_sort_offset(offset);
    }
}

void ODBViewRep::sortPrepare(int dir, int force) {
    if (ODBBase* const from = source()) {
        from->sortPrepare(dir, force);
    }
}

int ODBViewRep::set_query(dbrecord* query) {
    ODBBase* const from = source();
    return from ? from->set_query(query) : 0;
}

int ODBViewRep::match_record(int r) const {
    const ODBBase* const from = source();
    return from ? from->match_record(r) : 0;
}

int ODBViewRep::findFirst(const char* field, const char* value, int) {
    ODBBase* const from = source();
    return from ? from->findFirst(field, value, 0) : 0;
}

int ODBViewRep::get_valid() const {
    const ODBBase* const from = source();
    return from && from->get_valid() != 0 ? 1 : 0;
}

// -- the view's own file name and parameters --

void ODBViewRep::set_filename(LightweightString<wchar_t> path) {
    filename = std::move(path);
}

LightweightString<wchar_t> ODBViewRep::get_filename() {
    return filename;
}

int ODBViewRep::add_param(const char* name, const char* value) {
    if (name) {
        params.set(name, value);
    }
    return 0;
}

int ODBViewRep::set_param_val(const char* name, const char* value) {
    return add_param(name, value);
}

const char* ODBViewRep::get_param_val(const char* name) const {
    const LightweightString<char>* const value =
        params.find(name ? std::string_view{name} : std::string_view{});
    return value ? value->c_str() : "";
}
