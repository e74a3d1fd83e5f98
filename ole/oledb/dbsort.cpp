// Order: the process-wide comparison state, the three comparisons, sorting.
//
// The comparisons see values as slices; what lies beyond either end of a value reads as the empty
// text.

#include "ole/oledb/dbsort.h"

#include "ole/oledb/oledb.h"
#include "ole/oledb/RecordOrder.h"
#include "ole/oledb/recordValue.h"
#include "ole/oledb/SortKey.h"
#include "ole/oledb/sortParts.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>

int* cmp_fields = nullptr;
int comco = 0;

namespace {

int s_off = 0;
int force_normal_sort = 0;
int timecode_field = -1;

/// A count beyond the largest number goes on with the smallest: long sorts must not end in nothing
/// defined.
void countComparison() {
    comco = static_cast<int>(static_cast<unsigned>(comco) + 1);
}

const dbrecord& recordAt(const void* element) {
    return **static_cast<const dbrecord* const*>(element);
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
    return times != 0
               ? times
               : compareIgnoringCase(textFrom(a, framesOfTimecode), textFrom(b, framesOfTimecode));
}

/// A sort forced to the normal order takes no notice of an offset from the end.
int offsetInForce() noexcept {
    return force_normal_sort != 0 ? std::max(s_off, 0) : s_off;
}

/// Whether texts stand in the order ignoring case, and not in the natural one.
bool ignoresCase() noexcept {
    return force_normal_sort != 0 || s_off != 0;
}

int compareTexts(std::string_view a, std::string_view b) {
    if (!ignoresCase()) {
        return strxcmp(a, b);
    }
    const int offset = offsetInForce();
    return compareIgnoringCase(partAt(a, offset), partAt(b, offset));
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
            // Where both are, further keys are deliberately not asked.
            return emptyLast(x.empty(), y.empty());
        }
        if (*key == timecode_field) {
            return compareTimecodes(x, y); // the last word, deliberately, also where they are equal
        }
        const int result = compareTexts(x, y);
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
    rules.ignoringCase = ignoresCase();
    rules.offset = offsetInForce();
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
            // Comparisons stop here; the keys behind still decide about the timecode rule.
            *key = -1;
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
