// Which rows and columns of a table a person wants: the same options wherever a command takes them.
//
// A view does the work: it shows all rows, or those with a tag, then loses what does not match; it
// is sorted; and what is left is thinned out in that order.

#include "selection.h"

#include "cookieText.h"
#include "fieldNames.h"
#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "shownText.h"
#include "tableValues.h"
#include "tarn/Cookie.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <climits>
#include <memory>
#include <numeric>
#include <set>
#include <string_view>
#include <utility>

namespace {

struct Condition {
    unsigned col;
    std::string pattern;
};

struct Columns {
    std::vector<unsigned> shown;
    std::vector<unsigned> leftOut;
    bool named = false;
};

/// What the options say, in columns of a table.
struct Wish {
    std::vector<Condition> conditions;
    std::vector<unsigned> keys;
    std::optional<unsigned> unique;
    Columns columns;
};

// -- understanding the options

/// The place of the sign that ends the field's name, which may hold such signs itself.
std::size_t endOfField(const oledb& table, const std::string& text) {
    const std::size_t first = text.find('=');
    for (std::size_t at = first; at != std::string::npos; at = text.find('=', at + 1)) {
        if (at > 0 && table.get_fieldnum(text.substr(0, at).c_str()) >= 0) {
            return at;
        }
    }
    return first;
}

std::optional<Condition> conditionOf(oledb& table, const std::string& text) {
    const std::size_t sign = endOfField(table, text);
    if (sign == std::string::npos) {
        say("--where {}: should be FIELD=PATTERN", inQuotes(text));
        return std::nullopt;
    }
    std::string name = text.substr(0, sign);
    std::string pattern = text.substr(sign + 1);
    if (name.ends_with(' ') && table.get_fieldnum(name.c_str()) < 0) { // 'Notes = print'
        name = Tarn::trimmed(name);
        pattern = Tarn::trimmedFront(pattern);
    }
    if (pattern.size() > 1 && pattern.starts_with('=')) {
        note("--where {}: looks for values that hold {}; FIELD=PATTERN finds a text wherever it "
             "stands, and there is no exact match",
             inQuotes(text), inQuotes(pattern));
    }
    const auto col = columnOf(table, "--where", name);
    return col ? std::optional{Condition{*col, std::move(pattern)}} : std::nullopt;
}

bool takeConditions(oledb& table, const SelectionOptions& options, Wish& wish) {
    for (const std::string& text : options.where) {
        auto condition = conditionOf(table, text);
        if (!condition) {
            return false;
        }
        wish.conditions.push_back(std::move(*condition));
    }
    return true;
}

bool takeKeys(oledb& table, const SelectionOptions& options, Wish& wish) {
    if (options.sort.empty()) {
        return true;
    }
    auto keys = columnsOf(table, "--sort", options.sort);
    wish.keys = keys.value_or(std::vector<unsigned>{});
    return keys.has_value();
}

bool takeUnique(oledb& table, const SelectionOptions& options, Wish& wish) {
    if (!options.unique.empty()) {
        wish.unique = columnOf(table, "--unique", options.unique);
        if (!wish.unique && options.unique.find(',') != std::string::npos) {
            sayLine("--unique takes one field; olelog dedupe --by takes several");
        }
        return wish.unique.has_value();
    }
    return true;
}

bool isOneOf(const std::vector<unsigned>& columns, unsigned col) {
    return std::find(columns.begin(), columns.end(), col) != columns.end();
}

/// Parts a list of fields in those to show and those to leave out; a name with a minus sign may be
/// a field's own.
bool partFields(oledb& table, const std::string& list, std::vector<unsigned>& shown,
                std::vector<unsigned>& leftOut) {
    for (const std::string& name : namesOfList(table, list)) {
        const bool minus = name.starts_with('-') && table.get_fieldnum(name.c_str()) < 0;
        const auto col = columnOf(table, "--fields", minus ? name.substr(1) : name);
        if (!col) {
            return false;
        }
        std::vector<unsigned>& columns = minus ? leftOut : shown;
        if (!isOneOf(columns, *col)) {
            columns.push_back(*col);
        }
    }
    return true;
}

bool takeColumns(oledb& table, const SelectionOptions& options, Wish& wish) {
    std::vector<unsigned>& shown = wish.columns.shown;
    std::vector<unsigned>& leftOut = wish.columns.leftOut;
    if (options.fields && !partFields(table, *options.fields, shown, leftOut)) {
        return false;
    }
    wish.columns.named = !shown.empty();
    if (!wish.columns.named) {
        shown.resize(table.get_num_fields());
        std::iota(shown.begin(), shown.end(), 0U);
    }
    shown.erase(std::remove_if(shown.begin(), shown.end(),
                               [&](unsigned col) { return isOneOf(leftOut, col); }),
                shown.end());
    if (options.fields && shown.empty()) {
        sayLine("--fields: no field is left");
        return false;
    }
    return true;
}

// -- selecting

/// The tagged rows of a view. Taking the others out of it would move all that follows at each gap.
ODBView taggedRows(oledb& table, ODBViewRep& view) {
    ODBView kept = emptyView(table);
    for (int i = 0; i < view.count(); ++i) {
        if (view.tag(i)) {
            kept->append(view.sourceRow(i));
        }
    }
    return kept;
}

ODBView startingRows(oledb& table, bool tagged) {
    ODBView view = emptyView(table);
    if (!tagged) {
        view->displayAllRecords();
        return view;
    }
    if (table.get_fieldnum("Tag") < 0) {
        sayLine("the table has no field \"Tag\": no row is tagged");
        return view;
    }
    view->setupViewTagsFromOledbTagField();
    return taggedRows(table, *view);
}

/// Cookies are stored without hyphens and printed with them: a whole one is found in either form.
bool asksForCookie(const oledb& table, const Condition& condition) {
    return static_cast<int>(condition.col) == table.get_fieldnum("Cookie") &&
           Cookie{condition.pattern.c_str(), false}.valid();
}

ODBView rowsOfCookie(oledb& table, ODBViewRep& view, const Condition& condition) {
    const std::string wanted = plainCookie(condition.pattern);
    for (unsigned row = 0; row < view.get_num_records(); ++row) {
        const std::string held = plainCookie(valueOf(view, row, condition.col));
        view.set_tag(row, held.find(wanted) != std::string::npos ? 1 : 0);
    }
    return taggedRows(table, view);
}

ODBView rowsWithoutValue(oledb& table, ODBViewRep& view, unsigned col) {
    for (unsigned row = 0; row < view.get_num_records(); ++row) {
        view.set_tag(row, valueOf(view, row, col).empty() ? 1 : 0);
    }
    return taggedRows(table, view);
}

/// The module's search has no pattern for an empty value.
ODBView matchesOf(oledb& table, ODBViewRep& view, const Condition& condition) {
    if (condition.pattern.empty()) {
        return rowsWithoutValue(table, view, condition.col);
    }
    if (asksForCookie(table, condition)) {
        return rowsOfCookie(table, view, condition);
    }
    const std::unique_ptr<dbrecord> query{table.make_dummy_record()};
    query->set_field(static_cast<int>(condition.col), condition.pattern.c_str(), false);
    table.set_query(query.get());
    view.tagMatches(0);
    table.set_query(nullptr);
    return taggedRows(table, view);
}

/// Sorts by one key after the other, the last first: every key counts then, while the module's
/// order of several keys ends at a timecode and where both values are empty.
void sortBy(oledb& table, ODBViewRep& view, const std::vector<unsigned>& keys, bool descending) {
    Progress progress{"sorting"};
    progress.unmeasured(view.get_num_records());
    for (std::size_t left = keys.size(); left > 0; --left) {
        table.set_sortfield(static_cast<int>(keys[left - 1]));
        view.sort(descending ? -1 : 1, 0);
    }
}

struct OrderIgnoringCase {
    bool operator()(std::string_view a, std::string_view b) const {
        return compareIgnoringCase(a, b) < 0;
    }
};

/// Keeps the first row of each value. Equal values need not stand side by side.
ODBView firstsOf(oledb& table, ODBViewRep& view, unsigned col) {
    std::set<std::string_view, OrderIgnoringCase> seen;
    for (unsigned row = 0; row < view.get_num_records(); ++row) {
        view.set_tag(row, seen.insert(valueOf(view, row, col)).second ? 1 : 0);
    }
    return taggedRows(table, view);
}

ODBView selectRows(oledb& table, const Wish& wish, const SelectionOptions& options) {
    ODBView view = startingRows(table, options.tagged);
    for (const Condition& condition : wish.conditions) {
        view = matchesOf(table, *view, condition);
    }
    sortBy(table, *view, wish.keys, options.descending);
    if (wish.unique) {
        view = firstsOf(table, *view, *wish.unique);
    }
    if (options.limit) {
        view->remove(*options.limit, view->count());
    }
    return view;
}

} // namespace

bool SelectionOptions::narrows() const {
    return tagged || limit || !unique.empty() || !where.empty();
}

/// A new view warns about every field that it cannot name in its specification; none is needed.
ODBView emptyView(oledb& table) {
    const ModuleSilence silence;
    return ODBView{&table};
}

void addRowOptions(CLI::App& command, SelectionOptions& options) {
    command
        .add_option(
            "--where", options.where,
            "Only rows whose field holds the pattern, wherever it stands, letters A to Z in "
            "any case; ? is any byte, of which an accented letter has two. Nothing behind the = "
            "finds empty values. Given several times, all must match. Of a start or end "
            "field (Start time, End keycode, ...): rows whose range begins with it or "
            "holds it")
        ->allow_extra_args(false)
        ->type_name("FIELD=PATTERN")
        ->group(selectionGroup);
    command
        .add_option("--sort", options.sort, "In the order of these fields; empty values come last")
        ->type_name("FIELD[,FIELD...]")
        ->group(selectionGroup);
    command.add_flag("--descending", options.descending, "Sort from the last to the first")
        ->group(selectionGroup);
    command
        .add_option("--unique", options.unique,
                    "Only the first row of each value of a field, ignoring case")
        ->type_name("FIELD")
        ->group(selectionGroup);
    command.add_flag("--tagged", options.tagged, "Only rows with a tag in the field Tag")
        ->group(selectionGroup);
    command.add_option("--limit", options.limit, "At most so many rows")
        ->check(CLI::Range(0, INT_MAX).description(""))
        ->type_name("N")
        ->group(selectionGroup);
}

void addSelectionOptions(CLI::App& command, SelectionOptions& options) {
    addRowOptions(command, options);
    command
        .add_option("--fields", options.fields,
                    "These fields, in this order; -C leaves C out, of all where no others are "
                    "named")
        ->type_name("A,B,-C")
        ->group(selectionGroup);
}

std::optional<Selection> select(oledb& table, const SelectionOptions& options) {
    Wish wish;
    if (options.descending && options.sort.empty()) {
        sayLine("--descending needs --sort");
        return std::nullopt;
    }
    if (!takeConditions(table, options, wish) || !takeKeys(table, options, wish) ||
        !takeUnique(table, options, wish) || !takeColumns(table, options, wish)) {
        return std::nullopt;
    }
    ODBView rows = selectRows(table, wish, options);
    return Selection{std::move(rows), std::move(wish.columns.shown),
                     std::move(wish.columns.leftOut), wish.columns.named, options.narrows()};
}
