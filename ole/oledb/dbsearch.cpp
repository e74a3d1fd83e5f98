// Query by example: which rows match a record whose non-empty values are patterns.

#include "misc/date_def.h"
#include "misc/time_def.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/recordValue.h"
#include "tarn/Ascii.h"
#include "tarn/numbers.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

struct LabelPair {
    const char* start;
    const char* end;
};

// Names to the letter. A query in either column of a pair is searched in the range from start to
// end.
constexpr std::array<LabelPair, 6> labelPairs{{
    {"Start time", "End time"},
    {"snd start", "snd end"},
    {"start 24P code", "end 24P code"},
    {"start keycode", "end keycode"},
    {"start camcode", "end camcode"},
    {"start inkcode", "end inkcode"},
}};

const LabelPair* labelPairOf(std::string_view name) {
    for (const LabelPair& pair : labelPairs) {
        if (name == pair.start || name == pair.end) {
            return &pair;
        }
    }
    return nullptr;
}

constexpr std::size_t longestCompared = 255;

} // namespace

bool oledb::isSpecialLabelField(unsigned long col) const {
    return col < numFields_ && labelPairOf(fieldNames_[col].view());
}

void oledb::computeSpecialLabels() {
    specialLabels_.assign(numFields_, false);
    for (unsigned i = 0; i < numFields_; ++i) {
        specialLabels_[i] = isSpecialLabelField(i);
    }
}

// -- finding --

int oledb::findFirst(const char* field, const char* value, int n) {
    const char* const wanted = value ? value : "";
    if (compareIgnoringCase(field, "cookie") == 0) {
        const int row = getRowIndexByID(Cookie{wanted, false});
        if (row >= 0) {
            return row;
        }
    }
    const int col = get_fieldnum(field);
    if (col < 0) {
        return -1;
    }
    const std::size_t compared = n > 0 ? static_cast<std::size_t>(n) : std::string_view::npos;
    const std::string_view sought = std::string_view{wanted}.substr(0, compared);
    for (unsigned i = 0; i < rows_.count(); ++i) {
        if (valueAt(*rows_.at(i), col).substr(0, compared) == sought) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// As findFirst for each, with the texts that are no cookie of the index looked up in another one.
std::vector<int> oledb::findFirstOfEach(const std::vector<Cookie>& cookies) {
    std::unordered_map<std::string_view, int> rowOfText;
    std::vector<int> found;
    found.reserve(cookies.size());
    for (const Cookie& cookie : cookies) {
        const auto text = cookie.asString(false);
        int row = getRowIndexByID(Cookie{text, false});
        if (row < 0) {
            if (rowOfText.empty()) {
                rowOfText = rowsByText(get_fieldnum("Cookie"));
            }
            const auto other = rowOfText.find(text.view());
            row = other == rowOfText.end() ? -1 : other->second;
        }
        found.push_back(row);
    }
    return found;
}

/// The first row of each text of a column; the texts are the rows'.
std::unordered_map<std::string_view, int> oledb::rowsByText(int col) const {
    std::unordered_map<std::string_view, int> rows;
    for (unsigned i = 0; col >= 0 && i < rows_.count(); ++i) {
        rows.emplace(valueAt(*rows_.at(i), col), static_cast<int>(i));
    }
    return rows;
}

// -- query --

int oledb::set_query(dbrecord* query) {
    if (!query) {
        query_ = nullptr;
        return 0;
    }
    if (query->nfields() >= numFields_) {
        query_ = query;
    }
    return query->nfields();
}

int oledb::tag_matching_records(int keep) {
    if (!query_) {
        return 0;
    }
    int matches = 0;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        if (match_record(static_cast<int>(i)) != 0) {
            set_tag(i, 1);
            ++matches;
        } else if (keep == 0) {
            set_tag(i, 0);
        }
    }
    return matches;
}

int oledb::match_record(int row) const {
    const dbrecord* const record = get_record(static_cast<unsigned>(row));
    if (!record || !query_) {
        return -1;
    }
    for (unsigned i = 0; i < numFields_; ++i) {
        if (match_field(record, static_cast<int>(i)) == 0) {
            return 0;
        }
    }
    return 1;
}

int oledb::match_field(const dbrecord* record, int col) const {
    if (!record || !query_ || col < 0 || static_cast<unsigned>(col) >= numFields_) {
        return 0;
    }
    const auto column = static_cast<std::size_t>(col);
    if (column < specialLabels_.size() && specialLabels_[column]) {
        return found_in_special_label_field(record, col);
    }
    const LightweightString<char>& pattern = query_->getField(static_cast<unsigned short>(col));
    if (pattern.empty()) {
        return 1;
    }
    const char* const text = record->getField(static_cast<unsigned short>(col)).c_str();
    switch (fieldTypes_[column]) {
    case DBFieldTypes::TIMECODE:
        return found_in(text, pattern.c_str(), 1);
    case DBFieldTypes::TIMECODE_S:
        return found_in(time_def{text, LABEL_TIMECODE}.get_punctuated_str().c_str(),
                        pattern.c_str(), 1);
    case DBFieldTypes::DOS_DATE:
        return found_in(Tarn::ctimeText(Tarn::parseLongLong(text)).c_str(), pattern.c_str(), 0);
    default:
        return found_in(text, pattern.c_str(), 0);
    }
}

int oledb::found_in_special_label_field(const dbrecord* record, int col) const {
    if (!record || !query_ || col < 0 || static_cast<unsigned>(col) >= numFields_) {
        return 0;
    }
    const std::string_view query = valueAt(*query_, col);
    const LabelPair* const pair = labelPairOf(fieldNames_[static_cast<std::size_t>(col)].view());
    if (query.empty() || !pair) {
        return 1;
    }
    return labelRangeHolds(*record, query, get_fieldnum(pair->start), get_fieldnum(pair->end));
}

int oledb::labelRangeHolds(const dbrecord& record, std::string_view query, int startCol,
                           int endCol) const {
    const std::string_view start = valueAt(record, startCol);
    if (start.empty()) {
        return 0;
    }
    const std::string_view startPart = start.substr(0, query.size());
    if (query == startPart) {
        return 1;
    }
    const std::string_view end = valueAt(record, endCol);
    if (end.empty() || query < startPart) {
        return 0;
    }
    return query <= end.substr(0, query.size()) ? 1 : 0;
}

// -- the pattern search --

bool oledb::wordEndsAround(const char* text, const char* first, const char* behind) const {
    if (wholeWordSearch == 0) {
        return true;
    }
    const bool breakBefore = first == text || isfindbreak(first[-1]);
    return breakBefore && (*behind == '\0' || isfindbreak(*behind));
}

int oledb::found_in(const char* text, const char* pattern, int tc) const {
    if (!pattern || *pattern == '\0') {
        return 1;
    }
    if (!text || *text == '\0') {
        return 0;
    }
    const auto equal = [this](char t, char p) {
        return p == '?' || t == p ||
               (caseSensitiveSearch == 0 && Tarn::toLower(t) == Tarn::toLower(p));
    };
    const char* t = text;
    while (*t != '\0') {
        const char* const first = t;
        if (!equal(*safePostInc(t), *pattern)) {
            continue;
        }
        if (*t == '\0' && first != text) {
            return pattern[1] == '\0' ? 1 : 0; // the last character of a longer text: no word test
        }
        const char* p = pattern + 1;
        while (*p != '\0' && *t != '\0' && equal(*t, *p)) {
            ++t;
            ++p;
            if (tc != 0 && Tarn::isPunctuation(*t) && Tarn::isPunctuation(*p)) {
                ++t;
                ++p;
            }
        }
        // A failed attempt leaves t at the character that failed, where the search goes on.
        if (*p == '\0' && wordEndsAround(text, first, t)) {
            return 1;
        }
    }
    return 0;
}

// -- runs of equal values --

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
