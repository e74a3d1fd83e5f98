// What of a table a table file does not hold: lines end at 4095 bytes, a first value "OLEDB" is
// taken for a header, some bytes change.

#include "tableLosses.h"

#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "shownText.h"
#include "tableValues.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr std::size_t longestLine = 4095;

/// Bytes of a row's line in a table file.
std::size_t lineBytes(const dbrecord& row) {
    std::size_t bytes = row.nfields() == 0 ? 0 : row.nfields() - std::size_t{1};
    for (unsigned short i = 0; i < row.nfields(); ++i) {
        bytes += 2;
        for (const char c : row.getField(i).view()) {
            const bool takesTwo = c == '"' || c == '\n';
            bytes += c == '\r' ? 0U : takesTwo ? 2U : 1U;
        }
    }
    return bytes;
}

unsigned short longestField(const dbrecord& row) {
    unsigned short longest = 0;
    for (unsigned short i = 1; i < row.nfields(); ++i) {
        longest = row.getField(i).size() > row.getField(longest).size() ? i : longest;
    }
    return longest;
}

/// What the format does to a value; a line feed would otherwise be printed like a backslash and n.
std::string_view whatHappens(std::string_view before, std::string_view after) {
    const auto lineFeeds = [](std::string_view text) {
        return std::count(text.begin(), text.end(), '\n');
    };
    if (lineFeeds(after) > lineFeeds(before)) {
        return " (backslash and n become a line feed)";
    }
    if (before.find('\r') != std::string_view::npos) {
        return " (carriage returns are dropped)";
    }
    return Tarn::trimmed(before) == after ? " (blanks at the ends are dropped)" : "";
}

} // namespace

std::string whyUnsavable(oledb& table, unsigned number) {
    const dbrecord& row = *table.get_record(number);
    const std::size_t bytes = lineBytes(row);
    if (bytes > longestLine) {
        const unsigned short col = longestField(row);
        return fmt::format("the row needs a line of {} bytes, and a table file's lines end at {}; "
                           "shorten its values (the longest is that of {}, with {} bytes) or take "
                           "fewer columns",
                           bytes, longestLine, table.get_fieldname(col), row.getField(col).size());
    }
    if (Tarn::trimmed(row.getField(0).view()) == "OLEDB") {
        return "the row's first value is \"OLEDB\", which in a table file begins a header; change "
               "that value";
    }
    return {};
}

namespace {

/// Line feeds by a name of their own: spelled as usual one would read like a backslash and an n.
std::string withNamedLineFeeds(std::string_view text) {
    std::string named;
    for (const char c : text) {
        named += c == '\n' ? std::string{"<LF>"} : std::string{c};
    }
    return inQuotes(named);
}

} // namespace

std::string howItChanges(std::string_view before, std::string_view after) {
    return fmt::format("{} comes back from a table file as {}{}", withNamedLineFeeds(before),
                       withNamedLineFeeds(after), whatHappens(before, after));
}

void forChangedParameters(const oledb& saved, const oledb& loaded, const ParameterChange& tell) {
    for (unsigned i = 0; i < saved.get_num_params(); ++i) {
        const std::string name = saved.get_param_name(i);
        // of a name that stands twice the first counts, before and after
        const std::string_view before = saved.get_param_val(saved.get_param_name(i));
        const std::string kept{Tarn::trimmed(name)};
        const char* const after = loaded.get_param_val(kept.c_str());
        if (!after) {
            tell({name, fmt::format("parameter {}: gets lost in a table file", inQuotes(name)),
                  false});
        } else if (before != after) {
            tell({name, fmt::format("parameter {}: {}", shown(name), howItChanges(before, after)),
                  Tarn::trimmed(before) == after});
        } else if (name != kept) {
            tell({name,
                  fmt::format("parameter {}: is called {} in a table file", inQuotes(name),
                              inQuotes(kept)),
                  true});
        }
    }
}

namespace {

void tellChangedValues(oledb& saved, const oledb& loaded, const RowOrigins& origins,
                       Progress& progress, Findings& findings) {
    for (unsigned row = 0; row < saved.get_num_records(); ++row) {
        progress.at(row, saved.get_num_records());
        for (unsigned col = 0; col < saved.get_num_fields(); ++col) {
            const std::string_view before = valueOf(saved, row, col);
            const std::string_view after = valueOf(loaded, row, col);
            if (before != after) {
                findings.tell(fmt::format("{}: {}: {}", origins.of(row), saved.get_fieldname(col),
                                          howItChanges(before, after)));
            }
        }
    }
}

} // namespace

bool tellUnsavableRows(oledb& table, const RowOrigins& origins) {
    Findings findings;
    for (unsigned row = 0; row < table.get_num_records(); ++row) {
        const std::string why = whyUnsavable(table, row);
        if (!why.empty()) {
            findings.tell(origins.of(row) + ": " + why);
        }
    }
    findings.close();
    return findings.any();
}

std::string whyNotTheSame(oledb& saved, oledb& loaded) {
    dberror error;
    if (loaded.get_valid() == 0) {
        return "it cannot be loaded";
    }
    if (loaded.get_num_fields() != saved.get_num_fields()) {
        return fmt::format("{} of {} columns come back", loaded.get_num_fields(),
                           saved.get_num_fields());
    }
    for (unsigned col = 0; col < saved.get_num_fields(); ++col) {
        if (std::string_view{saved.get_fieldname(col)} != loaded.get_fieldname(col) ||
            saved.get_field_type(col) != loaded.get_field_type(col)) {
            return fmt::format("the column {} comes back as {}", inQuotes(saved.get_fieldname(col)),
                               inQuotes(loaded.get_fieldname(col)));
        }
    }
    if (loaded.get_num_records() != saved.get_num_records() || loaded.read_error_info(error)) {
        return fmt::format("{} of {} rows come back", loaded.get_num_records(),
                           saved.get_num_records());
    }
    return {};
}

bool tellChanges(oledb& saved, oledb& loaded, const RowOrigins& origins, Progress& progress) {
    Findings findings;
    forChangedParameters(saved, loaded,
                         [&](const ChangedParameter& change) { findings.tell(change.what); });
    tellChangedValues(saved, loaded, origins, progress, findings);
    findings.close();
    return findings.any();
}
