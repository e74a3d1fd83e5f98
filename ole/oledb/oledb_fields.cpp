// The table's columns: names, types, widths. A name map remembers every name that a column was ever
// given.

#include "misc/config.h"
#include "ole/oledb/oledb.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

const int remove_ampersands = config_int("remove_fieldname_ampersands", 1);

struct MinFieldSize {
    std::string_view name;
    unsigned width;
};

constexpr std::array<MinFieldSize, 41> minFieldSizes{{
    {"Cookie", 12},
    {"Type", 6},
    {"Flags", 8},
    {"Name", 32},
    {"Date", 12},
    {"Size", 8},
    {"pic qual", 4},
    {"aud qual", 32},
    {"chans", 64},
    {"Start time", 12},
    {"End time", 12},
    {"Duration", 16},
    {"Reel", 10},
    {"Reel Type", 30},
    {"Scene", 24},
    {"Shot", 24},
    {"Who", 24},
    {"Description", 64},
    {"Notes", 100},
    {"snd start", 12},
    {"snd end", 12},
    {"snd reel", 10},
    {"start 24P code", 12},
    {"end 24P code", 12},
    {"24P reel", 10},
    {"film_origin", 3},
    {"pulldown", 3},
    {"sequence", 2},
    {"start keycode", 17},
    {"end keycode", 17},
    {"film duration", 9},
    {"start camcode", 12},
    {"end camcode", 12},
    {"cam reel", 10},
    {"comp reel", 10},
    {"cam_date", 6},
    {"start inkcode", 15},
    {"end inkcode", 15},
    {"lab reel", 10},
    {"Mdrive", 4},
    {"Tag", 1},
}};
constexpr unsigned otherMinFieldSize = 4;

std::string_view viewOf(const char* text) {
    return text ? std::string_view{text} : std::string_view{};
}

} // namespace

LightweightString<char> strip_char_from_string(char c, const char* text) {
    std::string kept{viewOf(text)};
    std::erase(kept, c);
    return text ? LightweightString<char>{std::string_view{kept}} : LightweightString<char>{};
}

const char* oledb::get_fieldname(unsigned col) {
    return col < numFields_ ? fieldNames_[col].c_str() : "";
}

int oledb::set_fieldname(unsigned col, const char* name) {
    if (col >= numFields_) {
        return 0;
    }
    noCookieFound_ = false;
    if (!name || *name == '\0') {
        fieldNames_[col] = {};
        return 1;
    }
    const LightweightString<char> stored =
        remove_ampersands != 0 ? strip_char_from_string('&', name) : LightweightString<char>{name};
    fieldNameMap_[stored] = col;
    fieldNames_[col] = stored;
    return 1;
}

int oledb::get_fieldnum(const char* name) const {
    if (!name || numFields_ == 0) {
        return -1;
    }
    const std::string_view wanted{name};
    if (!fieldNameMap_.empty()) {
        const auto found = fieldNameMap_.find(wanted);
        return found == fieldNameMap_.end() ? -1 : static_cast<int>(found->second);
    }
    for (unsigned i = 0; i < numFields_; ++i) {
        if (compareIgnoringCase(fieldNames_[i].view(), wanted) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

DBFieldTypes::eType oledb::get_field_type(unsigned col) {
    return col < numFields_ ? fieldTypes_[col] : DBFieldTypes::NONE;
}

DBFieldTypes::eType oledb::get_fieldtype(unsigned col) {
    return get_field_type(col);
}

int oledb::set_fieldtype(unsigned col, DBFieldTypes::eType type) {
    if (type == DBFieldTypes::NONE) {
        fill_error_info(2, 3, 0, 0);
    }
    if (col >= numFields_) {
        return 0;
    }
    fieldTypes_[col] = type == DBFieldTypes::NONE ? DBFieldTypes::TEXT : type;
    return 1;
}

unsigned oledb::get_fieldsize(unsigned col) {
    if (col >= numFields_) {
        return 0;
    }
    std::size_t widest = 0;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        widest = std::max(widest, rows_.at(i)->getField(static_cast<unsigned short>(col)).size());
    }
    return static_cast<unsigned>(widest);
}

unsigned oledb::getMinFieldSize(const char* name) {
    for (const MinFieldSize& known : minFieldSizes) {
        if (compareIgnoringCase(viewOf(name), known.name) == 0) {
            return known.width;
        }
    }
    return otherMinFieldSize;
}

int oledb::addField(const DBFieldDesc& field) {
    if (numFields_ >= maxFields) {
        return -1;
    }
    const int existing = get_fieldnum(field.name.c_str());
    if (existing >= 0) {
        return existing;
    }
    const unsigned col = numFields_;
    try {
        setFieldCount(col + 1);
        set_fieldname(col, field.name.c_str());
        set_fieldtype(col, field.type);
    } catch (...) {
        setFieldCount(col);
        throw;
    }
    specialLabels_[col] = isSpecialLabelField(col);
    return static_cast<int>(col);
}

/// Gives the table, and every row, so many columns. Lowering the number needs no memory.
void oledb::setFieldCount(unsigned n) {
    int unreadWidths = 0; // records ask for a list and do not look at it
    specialLabels_.resize(n, false);
    for (unsigned i = 0; i < rows_.count(); ++i) {
        rows_.at(i)->resizeRecord(static_cast<int>(n), &unreadWidths, false);
    }
    numFields_ = n;
}

bool oledb::sameColumns(oledb* other) const {
    if (!other || numFields_ != other->numFields_) {
        return false;
    }
    return std::equal(fieldNames_.begin(), fieldNames_.begin() + numFields_,
                      other->fieldNames_.begin());
}
