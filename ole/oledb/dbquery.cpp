// Query by example: which rows match a record whose non-empty values are patterns. What a query
// demands is worked out once where many rows are asked.

#include "misc/date_def.h"
#include "misc/time_def.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/PreparedQuery.h"
#include "ole/oledb/recordValue.h"
#include "ole/oledb/RowsAhead.h"
#include "tarn/numbers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
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

bool labelRangeHolds(const dbrecord& record, std::string_view query, int startCol, int endCol) {
    const std::string_view start = valueAt(record, startCol);
    if (start.empty()) {
        return false;
    }
    const std::string_view startPart = start.substr(0, query.size());
    if (query == startPart) {
        return true;
    }
    const std::string_view end = valueAt(record, endCol);
    return !end.empty() && query >= startPart && query <= end.substr(0, query.size());
}

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

/// What a query demands of one column.
class oledb::QueryTerm {
public:
    QueryTerm(const oledb& table, int col)
        : col_{col}, type_{table.fieldTypes_[static_cast<std::size_t>(col)]},
          sought_{valueAt(*table.query_, col)}, pattern_{
                                                    table.patternOf(sought_.data(), isTimecode())} {
        const auto column = static_cast<std::size_t>(col);
        if (column < table.specialLabels_.size() && table.specialLabels_[column]) {
            searchRange(table, labelPairOf(table.fieldNames_[column].view()));
        }
    }

    [[nodiscard]] int column() const noexcept { return col_; }
    [[nodiscard]] bool demandsNothing() const noexcept { return sought_.empty(); }
    /// A long pattern leaves fewer rows to the others.
    [[nodiscard]] bool goesBefore(const QueryTerm& other) const noexcept {
        return sought_.size() > other.sought_.size();
    }
    [[nodiscard]] bool holdsFor(const dbrecord& record) const {
        if (demandsNothing()) {
            return true;
        }
        return isRange_ ? labelRangeHolds(record, sought_, startCol_, endCol_)
                        : isFoundIn(valueAt(record, col_));
    }

private:
    [[nodiscard]] bool isTimecode() const noexcept {
        return type_ == DBFieldTypes::TIMECODE || type_ == DBFieldTypes::TIMECODE_S;
    }

    /// A column that has lost its name to another one is not searched at all.
    void searchRange(const oledb& table, const LabelPair* pair) {
        isRange_ = true;
        sought_ = pair ? sought_ : std::string_view{};
        startCol_ = pair ? table.get_fieldnum(pair->start) : -1;
        endCol_ = pair ? table.get_fieldnum(pair->end) : -1;
    }

    [[nodiscard]] bool isFoundIn(std::string_view text) const {
        switch (type_) {
        case DBFieldTypes::TIMECODE_S:
            return pattern_.occursIn(
                time_def{text.data(), LABEL_TIMECODE}.get_punctuated_str().view());
        case DBFieldTypes::DOS_DATE:
            return pattern_.occursIn(Tarn::ctimeText(Tarn::parseLongLong(text.data())).view());
        default:
            return pattern_.occursIn(text);
        }
    }

    int col_;
    DBFieldTypes::eType type_;
    std::string_view sought_;
    TextPattern pattern_;
    bool isRange_ = false;
    int startCol_ = -1;
    int endCol_ = -1;
};

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

/// The terms that demand something.
std::vector<oledb::QueryTerm> oledb::queryTerms() const {
    std::vector<QueryTerm> terms;
    for (unsigned i = 0; i < numFields_; ++i) {
        const QueryTerm term{*this, static_cast<int>(i)};
        if (!term.demandsNothing()) {
            terms.push_back(term);
        }
    }
    std::stable_sort(terms.begin(), terms.end(),
                     [](const QueryTerm& a, const QueryTerm& b) { return a.goesBefore(b); });
    return terms;
}

PreparedQuery::PreparedQuery(const oledb& table) {
    if (table.query_) {
        terms_ = table.queryTerms();
    }
    columns_.reserve(terms_.size());
    for (const oledb::QueryTerm& term : terms_) {
        columns_.push_back(term.column());
    }
}

PreparedQuery::~PreparedQuery() = default;

bool PreparedQuery::matches(const dbrecord& record) const {
    return std::all_of(terms_.begin(), terms_.end(),
                       [&record](const oledb::QueryTerm& term) { return term.holdsFor(record); });
}

template <class Matches>
int oledb::tagRows(bool keep, Matches matches) {
    int found = 0;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        if (matches(i)) {
            set_tag(i, 1);
            ++found;
        } else if (!keep) {
            set_tag(i, 0);
        }
    }
    return found;
}

int oledb::tag_matching_records(int keep) {
    if (!query_) {
        return 0;
    }
    if (!isPlain(*this)) {
        return tagRows(keep != 0,
                       [this](unsigned row) { return match_record(static_cast<int>(row)) != 0; });
    }
    const PreparedQuery query{*this};
    const auto recordAt = [this](std::size_t row) {
        return get_record(static_cast<unsigned>(row));
    };
    RowsAhead ahead{rows_.count(), query.columns(), recordAt};
    return tagRows(keep != 0, [&](unsigned row) {
        ahead.reach(row);
        const dbrecord* const record = recordAt(row);
        return !record || query.matches(*record);
    });
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
    const bool sought = !valueAt(*query_, col).empty();
    return !sought || QueryTerm{*this, col}.holdsFor(*record) ? 1 : 0;
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
    const bool holds =
        labelRangeHolds(*record, query, get_fieldnum(pair->start), get_fieldnum(pair->end));
    return holds ? 1 : 0;
}

TextPattern oledb::patternOf(const char* text, bool timecode) const noexcept {
    return {text, {caseSensitiveSearch != 0, wholeWordSearch != 0, timecode}};
}

int oledb::found_in(const char* text, const char* pattern, int tc) const {
    const std::string_view searched = text ? std::string_view{text} : std::string_view{};
    return patternOf(pattern, tc != 0).occursIn(searched) ? 1 : 0;
}
