// The rows of another table: of the same columns (`add_oledb`), or of some that both have.

#include "misc/time_def.h"
#include "ole/oledb/oledb.h"

#include <vector>

bool oledb::equalColumns(const oledb& other) const {
    if (revision_ != other.revision_ || numFields_ != other.numFields_) {
        return false;
    }
    for (unsigned i = 0; i < numFields_; ++i) {
        if (fieldTypes_[i] != other.fieldTypes_[i] ||
            compareIgnoringCase(fieldNames_[i].view(), other.fieldNames_[i].view()) != 0) {
            return false;
        }
    }
    return true;
}

int oledb::add_oledb(oledb* other) {
    if (showTagsOnly_ != 0 || !other || !equalColumns(*other)) {
        return -1;
    }
    const unsigned n = other->get_num_records();
    copyRowsFrom(*other);
    forgetCookies();
    return static_cast<int>(n);
}

namespace {

/// A column that two tables share.
struct SharedColumn {
    unsigned here;
    int there;
};

/// A value as this table's column holds it: timecodes go from one stored form to the other.
LightweightString<char> converted(const char* text, DBFieldTypes::eType from,
                                  DBFieldTypes::eType to) {
    if (to == DBFieldTypes::TIMECODE && from == DBFieldTypes::TIMECODE_S) {
        return time_def{text, LABEL_TIMECODE}.get_punctuated_str();
    }
    if (to == DBFieldTypes::TIMECODE_S && from == DBFieldTypes::TIMECODE) {
        return time_def{text, LABEL_TIMECODE}.get_database_str();
    }
    return text;
}

std::vector<SharedColumn> sharedColumns(oledb& here, const oledb& there) {
    std::vector<SharedColumn> shared;
    for (unsigned i = 0; i < here.get_num_fields(); ++i) {
        const int col = there.get_fieldnum(here.get_fieldname(i));
        if (col >= 0) {
            shared.push_back({i, col});
        }
    }
    return shared;
}

void copyShared(oledb& here, unsigned to, oledb& there, unsigned from,
                const std::vector<SharedColumn>& shared) {
    for (const SharedColumn& col : shared) {
        const auto type = there.get_field_type(static_cast<unsigned>(col.there));
        const auto text =
            converted(there.get_field(from, col.there), type, here.get_field_type(col.here));
        here.set_field(to, col.here, text.c_str());
    }
}

} // namespace

int oledb::merge_all_matching(oledb* other) {
    if (!other) {
        return 0;
    }
    const std::vector<SharedColumn> shared = sharedColumns(*this, *other);
    if (shared.empty()) {
        return 0;
    }
    const unsigned rows = other->get_num_records(); // once: the other table may be this one
    const unsigned before = rows_.count();
    try {
        for (unsigned r = 0; r < rows; ++r) {
            const int added = add_records(1);
            if (added < 0) {
                break;
            }
            copyShared(*this, static_cast<unsigned>(added), *other, r, shared);
        }
    } catch (...) {
        rows_.remove(before, rows_.count() - before);
        throw;
    }
    return 1;
}
