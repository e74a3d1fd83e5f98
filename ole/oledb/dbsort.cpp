// Order: the process-wide comparison state, the three comparisons, sorting and merging.
//
// The comparisons see values as slices; what lies beyond either end of a value reads as the empty
// text.

#include "ole/oledb/dbsort.h"

#include "misc/time_def.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/RecordOrder.h"
#include "ole/oledb/recordValue.h"
#include "ole/oledb/SortKey.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

int* cmp_fields = nullptr;
int comco = 0;

namespace {

int s_off = 0;
int force_normal_sort = 0;
int timecode_field = -1;

constexpr std::size_t timeOfTimecode = 8;   // hours, minutes, seconds and their marks
constexpr std::size_t framesOfTimecode = 9; // behind the mark that tells drop frame

/// A count beyond the largest number goes on with the smallest: long sorts must not end in nothing
/// defined.
void countComparison() {
    comco = static_cast<int>(static_cast<unsigned>(comco) + 1);
}

const dbrecord& recordAt(const void* element) {
    return **static_cast<const dbrecord* const*>(element);
}

std::string_view from(std::string_view text, std::size_t start) {
    return text.substr(std::min(start, text.size()));
}

std::string_view behindLocaleBlanks(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && Tarn::isLocaleSpace(text[start])) {
        ++start;
    }
    return text.substr(start);
}

/// Where exactly one of two values is empty, the result that puts it last.
int emptyLast(bool aEmpty, bool bEmpty) {
    return (aEmpty ? 1 : 0) - (bEmpty ? 1 : 0);
}

int compareTimecodes(std::string_view a, std::string_view b) {
    const int times = compareIgnoringCase(a, b, timeOfTimecode);
    return times != 0 ? times
                      : compareIgnoringCase(from(a, framesOfTimecode), from(b, framesOfTimecode));
}

std::string_view lastCharacters(std::string_view text, long long count) {
    const auto size = static_cast<long long>(text.size());
    return size <= count ? text : text.substr(static_cast<std::size_t>(size - count));
}

int compareAtOffset(std::string_view a, std::string_view b) {
    if (s_off > 0 || force_normal_sort != 0) {
        const std::size_t start = s_off > 0 ? static_cast<std::size_t>(s_off) : 0;
        return compareIgnoringCase(from(a, start), from(b, start));
    }
    if (s_off < 0) {
        const long long count = -static_cast<long long>(s_off);
        return compareIgnoringCase(lastCharacters(a, count), lastCharacters(b, count));
    }
    return strxcmp(a, b);
}

} // namespace

int dbr_cmp(const void* a, const void* b) {
    countComparison();
    const dbrecord& first = recordAt(a);
    const dbrecord& second = recordAt(b);
    const bool firstBlank = first.is_blank() != 0;
    const bool secondBlank = second.is_blank() != 0;
    if (firstBlank || secondBlank) {
        return emptyLast(firstBlank, secondBlank);
    }
    for (const int* key = cmp_fields; key && *key >= 0; ++key) {
        const std::string_view x = Tarn::trimmedFront(valueAt(first, *key));
        const std::string_view y = Tarn::trimmedFront(valueAt(second, *key));
        if (x.empty() || y.empty()) {
            return emptyLast(x.empty(),
                             y.empty()); // both empty: further keys are deliberately not asked
        }
        if (*key == timecode_field) {
            return compareTimecodes(x, y); // the last word, deliberately, also where they are equal
        }
        const int result = compareAtOffset(x, y);
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

int dbr_backcmp(const void* a, const void* b) {
    countComparison();
    for (const int* key = cmp_fields; key && *key >= 0; ++key) {
        const int result =
            compareIgnoringCase(valueAt(recordAt(a), *key), valueAt(recordAt(b), *key));
        if (result != 0) {
            return -result;
        }
    }
    return 0;
}

int dbr_cmp_simple(const void* a, const void* b) {
    const dbrecord& first = recordAt(a);
    const dbrecord& second = recordAt(b);
    const bool firstBlank = first.is_blank() != 0;
    const bool secondBlank = second.is_blank() != 0;
    if (firstBlank || secondBlank) {
        return -emptyLast(firstBlank, secondBlank);
    }
    for (const int* key = cmp_fields; key && *key >= 0; ++key) {
        const std::string_view x = behindLocaleBlanks(valueAt(first, *key));
        const std::string_view y = behindLocaleBlanks(valueAt(second, *key));
        if (x.empty() || y.empty()) {
            return -emptyLast(x.empty(), y.empty());
        }
        const int result = compareIgnoringCase(x, y);
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

SortRules sortRulesInForce(bool descending) {
    SortRules rules;
    for (const int* key = cmp_fields; key && *key >= 0; ++key) {
        rules.fields.push_back(*key);
    }
    rules.ignoringCase = force_normal_sort != 0 || s_off != 0;
    rules.offset = force_normal_sort != 0 ? std::max(s_off, 0) : s_off;
    rules.timecodeField = timecode_field;
    rules.descending = descending;
    return rules;
}

void oledb::set_sortfield(int col) {
    sortFieldPair_ = {col, -1};
    sortFields_ = sortFieldPair_.data();
}

void oledb::set_sortfields(int* cols) {
    sortFields_ = cols ? cols : sortFieldPair_.data();
}

void oledb::set_sort_offset(int offset) {
    sortOffset_ = offset;
}

void oledb::sortPrepare(int, int force) {
    s_off = sortOffset_;
    comco = 0;
    cmp_fields = sortFields_;
    force_normal_sort = force;
    timecode_field = -1;
    for (int* key = sortFields_; *key >= 0; ++key) {
        if (static_cast<unsigned>(*key) >= numFields_) {
            *key =
                -1; // comparisons stop here; the keys behind still decide about the timecode rule
        } else if (fieldTypes_[static_cast<unsigned>(*key)] == DBFieldTypes::TIMECODE) {
            timecode_field = *key;
        }
    }
}

void oledb::sort(int dir, int force) {
    sortPrepare(dir, force);
    forgetCookies();
    const std::span rows{rows_.data(), rows_.count()};
    putInOrder(rows, orderOf(rows, dir < 0));
    if (showTagsOnly_ != 0) {
        index_tags();
    }
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
