// Tags and the show-tags-only mode. The tag index is a snapshot: it holds the rows that were tagged
// when it was filled, whatever happens to their tags afterwards.

#include "ole/oledb/oledb.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

constexpr std::size_t longestCompared = 255;

} // namespace

int oledb::set_tag(unsigned row, int tag) {
    dbrecord* const record = get_record(row);
    if (!record) {
        return 0;
    }
    record->tag_ = static_cast<unsigned char>(tag);
    return 1;
}

int oledb::invert_tag(unsigned row) {
    dbrecord* const record = get_record(row);
    if (!record) {
        return 0;
    }
    record->tag_ = record->tag_ == 0 ? 1 : 0;
    return 1;
}

int oledb::set_all_tags(int tag) {
    int set = 0;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        set += set_tag(i, tag);
    }
    return set;
}

int oledb::invert_all_tags() {
    for (unsigned i = 0; i < rows_.count(); ++i) {
        unsigned char& tag = rows_.at(i)->tag_;
        tag = tag == 0 ? 1 : 0;
    }
    return static_cast<int>(rows_.count());
}

int oledb::get_tag(unsigned row) {
    const dbrecord* const record = get_record(row);
    return record ? record->tag_ : -1;
}

int oledb::get_num_tags() {
    int tagged = 0;
    const unsigned n = get_num_records();
    for (unsigned i = 0; i < n; ++i) {
        tagged += get_tag(i) != 0 ? 1 : 0;
    }
    return tagged;
}

int oledb::tag_all_different(int col) {
    set_all_tags(0);
    set_show_tags_only(0);
    set_sortfield(col);
    sort(1, 0);
    std::string_view previous;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        const char* const text = get_field(i, col);
        const std::string_view value = text ? std::string_view{text} : std::string_view{};
        if (compareIgnoringCase(value, previous) != 0) {
            set_tag(i, 1);
            previous = value.substr(0, longestCompared);
        }
    }
    return get_num_tags();
}

int oledb::set_show_tags_only(int on) {
    if (on != 0) {
        index_tags();
    }
    showTagsOnly_ = on;
    forgetCookies(); // the index holds row numbers, which the mode changes
    return on != 0 ? static_cast<int>(taggedCount_) : 0;
}

void oledb::index_tags() {
    tagIndex_.resize(std::max<std::size_t>(tagIndex_.size(), rows_.capacity()));
    taggedCount_ = 0;
    forgetCookies();
    for (unsigned i = 0; i < rows_.count(); ++i) {
        dbrecord* const row = rows_.at(i);
        if (row->tag_ != 0) {
            tagIndex_[taggedCount_++] = row;
        }
    }
}

unsigned oledb::get_new_row(unsigned raw) const {
    if (showTagsOnly_ == 0) {
        return raw;
    }
    const dbrecord* const row = rows_.at(raw);
    const auto end = tagIndex_.begin() + taggedCount_;
    const auto found = std::find(tagIndex_.begin(), end, row);
    return !row || found == end ? ~0U : static_cast<unsigned>(found - tagIndex_.begin());
}

unsigned oledb::get_raw_row(unsigned row) const {
    if (showTagsOnly_ == 0) {
        return row;
    }
    // The entry just behind the last one may hold a row from an earlier index; callers may ask for
    // it.
    return row <= taggedCount_ && row < tagIndex_.size() ? rows_.find(tagIndex_[row]) : ~0U;
}
