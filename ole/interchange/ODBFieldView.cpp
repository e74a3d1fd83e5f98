// Views made into tables: a choice of the fields as a file, or everything as a table in memory.

#include "ole/interchange/ODBFieldView.h"

#include "ole/oledb/oledb.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int noField = -1;

} // namespace

ODBFieldView::ODBFieldView(ODBView view, const int* fields) : view_{std::move(view)} {
    while (fields && *fields >= 0 && addSlot(*fields)) {
        ++fields;
    }
}

ODBFieldView::ODBFieldView(ODBView view, const char* const* names) : view_{std::move(view)} {
    if (view_) {
        view_->displayAllRecords();
    }
    while (names && *names && addSlot(view_ ? view_->get_fieldnum(*names) : noField)) {
        ++names;
    }
}

/// False for one slot too many, which empties the list.
bool ODBFieldView::addSlot(int field) {
    if (count_ == maxFields) {
        count_ = 0;
        return false;
    }
    fields_[static_cast<std::size_t>(count_++)] = field;
    return true;
}

int ODBFieldView::fieldOf(int slot) const noexcept {
    return view_ && slot >= 0 && slot < count_ ? fields_[static_cast<std::size_t>(slot)] : noField;
}

const char* ODBFieldView::get_modified_field(int record, int slot) {
    const int field = fieldOf(slot);
    return field < 0 ? nullptr : view_->get_field(static_cast<unsigned>(record), field);
}

DBFieldDesc* ODBFieldView::get_modified_field_header(int slot) {
    auto header = std::make_unique<DBFieldDesc>();
    if (const int field = fieldOf(slot); field >= 0) {
        header->name = view_->get_fieldname(static_cast<unsigned>(field));
        header->type = view_->get_field_type(static_cast<unsigned>(field));
    }
    return header.release();
}

int ODBFieldView::exportNewOleDb(bool onlyTagged) {
    if (!view_ || view_->get_valid() == 0) {
        return 0;
    }
    std::vector<DBFieldDesc> headers;
    for (int i = 0; i < count_; ++i) {
        const std::unique_ptr<DBFieldDesc> header{get_modified_field_header(i)};
        headers.push_back(header ? *header : DBFieldDesc{});
    }
    headers.emplace_back();
    oledb table{headers.data()};
    if (addRows(table, onlyTagged) == 0) {
        return 0;
    }
    table.set_filename(fileName_);
    return table.save_text();
}

/// Adds the rows to a table of the slots and returns how many. Slots that the table does not have,
/// it refuses.
int ODBFieldView::addRows(oledb& table, bool onlyTagged) {
    int added = 0;
    for (unsigned i = 0; i < view_->get_num_records(); ++i) {
        if (onlyTagged && view_->get_tag(i) == 0) {
            continue;
        }
        const auto row = static_cast<unsigned>(table.add_records(1));
        for (int slot = 0; slot < count_; ++slot) {
            table.set_field(row, static_cast<unsigned>(slot),
                            get_modified_field(static_cast<int>(i), slot));
        }
        ++added;
    }
    return added;
}

oledb* Convert_ODBView_to_oledb(ODBView view) {
    const oledb* const source = view ? view->table() : nullptr;
    if (!source) {
        return nullptr;
    }
    auto table = std::make_unique<oledb>(*source, 0);
    const unsigned n = view->get_num_records();
    if (table->add_records(static_cast<int>(n)) == -1) {
        return nullptr;
    }
    for (unsigned i = 0; i < n; ++i) {
        table->copy_record(static_cast<int>(i), view->get_record(i));
    }
    return table.release();
}
