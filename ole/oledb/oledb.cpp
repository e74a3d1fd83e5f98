// The table: construction, rows, values and the file name. Rows are made by `newRow` and
// `copyOfRow`, which attach them to the table.

#include "ole/oledb/oledb.h"

#include "misc/date_def.h"
#include "ole/oledb/messageTypes.h"
#include "ole/oledb/rowNumbers.h"
#include "tarn/NotifyMsg.h"
#include "tarn/numbers.h"

#include <algorithm>
#include <utility>

/// Appends n rows that `make` gives for 0, 1, ...: all of them, or none when memory runs out.
template <class Make>
void oledb::appendRows(unsigned n, Make make) {
    rows_.makeRoomFor(n);
    const unsigned before = rows_.count();
    try {
        for (unsigned i = 0; i < n; ++i) {
            rows_.append(make(i));
        }
    } catch (...) {
        rows_.remove(before, rows_.count() - before);
        throw;
    }
}

// -- construction --

oledb::oledb() = default;

oledb::oledb(const DBFieldDesc* fields) : valid_{1} {
    takeFields(fields, 0);
    post_init();
}

oledb::oledb(LightweightString<wchar_t> file, int maxRows, bool requireHeader)
    : filename_{std::move(file)} {
    loadFromFile(maxRows, requireHeader);
}

oledb::oledb(const oledb& src, int withRows) : revision_{src.revision_}, valid_{1} {
    copyFieldsFrom(src);
    for (const Param& param : src.params_) {
        oledb::add_param(param.name.c_str(), param.value.c_str());
    }
    post_init();
    if (withRows != 0) {
        copyRowsFrom(src);
    }
}

oledb::oledb(const oledb& src, const DBFieldDesc* extra) : revision_{src.revision_}, valid_{1} {
    copyFieldsFrom(src);
    takeFields(extra, src.numFields_);
    post_init();
    copyRowsFrom(src);
}

oledb::~oledb() = default;

unsigned oledb::takeFields(const DBFieldDesc* fields, unsigned firstCol) {
    numFields_ = firstCol;
    for (; fields && fields->type != DBFieldTypes::NONE && numFields_ < maxFields; ++fields) {
        const unsigned col = numFields_++; // constructors call this, so nothing is overridden yet
        oledb::set_fieldname(col, fields->name.c_str());
        oledb::set_fieldtype(col, fields->type);
    }
    return numFields_;
}

void oledb::copyFieldsFrom(const oledb& src) {
    numFields_ = src.numFields_;
    fieldNames_ = src.fieldNames_;
    fieldTypes_ = src.fieldTypes_;
    fieldNameMap_ = src.fieldNameMap_;
}

void oledb::copyRowsFrom(const oledb& src) {
    const unsigned n = src.get_num_records();
    appendRows(n, [&](unsigned i) {
        const dbrecord* const row = src.get_record(i);
        return row ? copyOfRow(*row) : newRow();
    });
}

void oledb::setDefaults() {
    revision_ = 1;
    fieldNames_.fill({});
    fieldTypes_.fill(DBFieldTypes::NONE);
    numFields_ = 0;
    tagIndex_.clear();
    params_.clear();
    oledb::set_sortfield(0);
    sortOffset_ = 0;
    query_ = nullptr;
    caseSensitiveSearch = 0;
    wholeWordSearch = 0;
    showTagsOnly_ = 0;
    taggedCount_ = 0;
    timecodeColumns_.clear();
    errorPresent_ = false;
    error_ = {};
    changed_ = 0;
    modifiedTime_ = 0;
    pendingCookies_.clear();
    updateDepth_ = 0;
    forgetCookies();
    fieldNameMap_.clear();
    specialLabels_.clear();
    valid_ = 0;
}

void oledb::free() {
    rows_.clear();
    setDefaults();
}

void oledb::init() {
    rows_.abandon();
    setDefaults();
}

void oledb::post_init() {
    modifiedTime_ = Tarn::now();
    rows_.startChunk();
    oledb::set_sortfield(0);
    oledb::set_sort_offset(0);
    computeSpecialLabels();
}

// -- rows --

std::unique_ptr<dbrecord> oledb::newRow() {
    auto row =
        std::make_unique<dbrecord>(static_cast<unsigned short>(numFields_), fieldTypes_.data());
    row->set_container(this);
    return row;
}

std::unique_ptr<dbrecord> oledb::copyOfRow(const dbrecord& src) {
    auto row = std::make_unique<dbrecord>(src, static_cast<unsigned short>(numFields_));
    row->set_container(this);
    return row;
}

int oledb::add_records(int n) {
    if (showTagsOnly_ != 0) {
        return -1;
    }
    const unsigned first = rows_.count();
    if (n > 0) {
        appendRows(static_cast<unsigned>(n), [this](unsigned) { return newRow(); });
    }
    return static_cast<int>(first);
}

int oledb::insert_records(unsigned at, unsigned n) {
    if (showTagsOnly_ != 0) {
        return 0;
    }
    rows_.makeRoomFor(n);
    std::vector<std::unique_ptr<dbrecord>> fresh;
    fresh.reserve(n);
    for (unsigned i = 0; i < n; ++i) {
        fresh.push_back(newRow());
    }
    rows_.insert(std::min(at, rows_.count()), fresh);
    forgetCookies();
    return static_cast<int>(n);
}

int oledb::delete_records(unsigned from, unsigned n) {
    if (showTagsOnly_ != 0 || n == 0 || from >= rows_.count()) {
        return 0;
    }
    const unsigned deleted = std::min(n, rows_.count() - from);
    const int type = recordsDeletedType();
    const NotifyMsg msg = hasListeners(type) ? NotifyMsg{rowNumbers(from, deleted)} : NotifyMsg{};
    rows_.remove(from, deleted);
    forgetCookies();
    changed_ = 1;
    issueNotification(msg, type);
    return static_cast<int>(deleted);
}

int oledb::delete_tagged_records() {
    if (showTagsOnly_ != 0) {
        return -1;
    }
    return hasListeners(recordsDeletedType()) ? deleteTaggedRuns() : deleteTaggedUnheard();
}

/// Run by run, each with its message. Listeners may change rows and tags, so both are asked for
/// anew, and may destroy the table.
int oledb::deleteTaggedRuns() {
    const std::weak_ptr<const void> alive = life();
    int deleted = 0;
    unsigned run = 0; // tagged rows directly before the row looked at
    for (unsigned row = 0; !alive.expired() && row <= get_num_records(); ++row) {
        if (get_tag(row) == 1) {
            ++run;
            continue;
        }
        if (run != 0) {
            row -= run;
            deleted += delete_records(row, run);
            run = 0;
        }
    }
    return deleted;
}

/// In one pass, for nobody can see the steps.
int oledb::deleteTaggedUnheard() {
    const unsigned deleted = rows_.removeIf([](const dbrecord& row) { return row.tag_ == 1; });
    if (deleted != 0) {
        forgetCookies();
        changed_ = 1;
    }
    return static_cast<int>(deleted);
}

unsigned oledb::get_num_records() const {
    return showTagsOnly_ != 0 ? taggedCount_ : rows_.count();
}

dbrecord* oledb::get_record(unsigned row) const {
    if (showTagsOnly_ == 0) {
        return rows_.at(row);
    }
    return row < taggedCount_ ? tagIndex_[row] : nullptr;
}

dbrecord* oledb::make_dummy_record() {
    return std::make_unique<dbrecord>(static_cast<unsigned short>(numFields_), fieldTypes_.data())
        .release();
}

void oledb::copy_record(int to, oledb* src, int from) {
    if (dbrecord* const row = src ? src->get_record(static_cast<unsigned>(from)) : nullptr) {
        dbrecord copy{*row};
        copy_record(to, &copy);
    }
}

void oledb::copy_record(int to, dbrecord* record) {
    dbrecord* const row = get_record(static_cast<unsigned>(to));
    if (row && record) {
        *row = *record;
    }
}

unsigned oledb::get_space_used() const {
    unsigned sum = 0;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        sum += rows_.at(i)->get_space_used();
    }
    return sum;
}

// -- values --

const char* oledb::get_field(unsigned row, int col) const {
    const dbrecord* const record = get_record(row);
    if (!record || col < 0 || col > 0xFFFF) {
        return nullptr;
    }
    return record->get_field(static_cast<unsigned short>(col));
}

const char* oledb::get_field(unsigned row, const char* name) const {
    return get_field(row, get_fieldnum(name));
}

int oledb::set_field(unsigned row, unsigned col, const char* text) {
    dbrecord* const record = get_record(row);
    return record ? record->set_field(static_cast<int>(col), text, true) : 0;
}

int oledb::set_field(unsigned row, unsigned col, int number) {
    dbrecord* const record = get_record(row);
    return record ? record->set_field(static_cast<int>(col), number) : 0;
}

int oledb::set_field(unsigned row, unsigned col, double seconds) {
    dbrecord* const record = get_record(row);
    return record ? record->set_field(static_cast<int>(col), seconds) : 0;
}

int oledb::set_field(unsigned row, unsigned col, bool flag) {
    dbrecord* const record = get_record(row);
    return record ? record->set_field(static_cast<int>(col), flag) : 0;
}

int oledb::in_field(unsigned row, unsigned col, char* buf, int size) {
    const dbrecord* const record = get_record(row);
    return record ? record->in_field(static_cast<int>(col), buf, size) : 0;
}

int oledb::in_field(unsigned row, unsigned col, int& number) {
    const char* const text = get_field(row, static_cast<int>(col));
    if (!text) {
        return 0;
    }
    number = Tarn::parseInt(text);
    return 1;
}

int oledb::in_field(unsigned row, unsigned col, double& number) {
    const char* const text = get_field(row, static_cast<int>(col));
    if (!text) {
        return 0;
    }
    number = Tarn::parseDouble(text);
    return 1;
}

int oledb::in_field(unsigned row, unsigned col, bool& flag) {
    const char* const text = get_field(row, static_cast<int>(col));
    if (!text) {
        return 0;
    }
    flag = text[0] == 't';
    return 1;
}

void oledb::rowWritten(int slot) noexcept {
    changed_ = 1;
    if (noCookieFound_ && slot == get_fieldnum(cookieField)) {
        noCookieFound_ = false;
    }
}

void oledb::rowRead() noexcept {
    changed_ = 1;
    noCookieFound_ = false;
    modifiedTime_ = Tarn::now();
}

// -- file name and changes --

void oledb::set_filename(LightweightString<wchar_t> path) {
    filename_ = std::move(path);
}

LightweightString<wchar_t> oledb::get_filename() {
    return filename_;
}

int oledb::clear_changed() {
    for (unsigned i = 0; i < rows_.count(); ++i) {
        rows_.at(i)->changed_ = 0;
    }
    changed_ = 0;
    return static_cast<int>(rows_.count());
}
