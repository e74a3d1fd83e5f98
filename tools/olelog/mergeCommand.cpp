// olelog merge: the rows of another table into a table.
//
// The other table's rows are first brought into this one's columns by the module, which converts
// timecodes. Rows that match by key fill in what is missing; nothing that stands is written over.
// The others are added behind.

#include "Command.h"
#include "cookieText.h"
#include "fieldNames.h"
#include "files.h"
#include "lineNumbers.h"
#include "messages.h"
#include "ole/interchange/FieldMap.h"
#include "ole/oledb/oledb.h"
#include "repeatedRows.h"
#include "rowKey.h"
#include "rowNames.h"
#include "shownText.h"
#include "TableEdit.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::size_t mostFilledTold = 20;
constexpr std::ptrdiff_t mostRowsTold = 5;

struct MergeOptions {
    EditOptions edit;
    std::string other;
    std::string by;
};

class Merge {
public:
    Merge(oledb& table, oledb& other, std::string otherName)
        : table_{table}, other_{other}, taken_{table, 0}, otherName_{std::move(otherName)} {}

    /// Brings the other rows into this table's columns; false where none is shared.
    bool take() {
        if (taken_.merge_all_matching(&other_) == 0) {
            say("{}: shares no column with the table", otherName_);
            return false;
        }
        tellColumnsNotTaken();
        tellParametersNotTaken();
        tellValuesNotTaken();
        rememberCookies();
        return true;
    }

    bool setKeys(const std::vector<unsigned>& keys) {
        for (const unsigned key : keys) {
            const char* const name = table_.get_fieldname(key);
            if (other_.get_fieldnum(name) < 0) {
                say("--by: {} has no field {}", otherName_, inQuotes(name));
                return false;
            }
        }
        keys_ = keys;
        compared_ = comparedColumns();
        return true;
    }

    EditOutcome run(const EditOptions& edit) {
        would_ = wouldBe(edit);
        const bool repeated = keys_.empty() && tellRepeated();
        if (!keys_.empty()) {
            fillMatches();
        }
        ambiguous_.close();
        differences_.close();
        tellKnownCookies();
        const unsigned rows = taken_.get_num_records();
        const int matched = taken_.delete_tagged_records();
        const unsigned added = taken_.get_num_records();
        table_.merge_all_matching(&taken_);
        const bool lossless = !differences_.any() && !unread_.any() && !repeated && !known_.any() &&
                              !ambiguous_.any();
        return {.code = lossless ? exitFine : exitFindings,
                .changed = added != 0 || filled_ != 0,
                .summary = fmt::format("of {} in {}, {} {}added, {} matched; {} {}filled in{}{}",
                                       counted(rows, "row"), otherName_, added, wouldBe(edit),
                                       matched, counted(filled_, "value"), wouldBe(edit),
                                       differing(), tagsNotTaken())};
    }

private:
    using Matches = std::multimap<std::string, unsigned>;

    /// Of two columns with one name only one is reached by it.
    void tellColumnsNotTaken() {
        std::set<int> reached;
        for (unsigned col = 0; col < table_.get_num_fields(); ++col) {
            reached.insert(other_.get_fieldnum(table_.get_fieldname(col)));
        }
        std::vector<std::string> names;
        for (unsigned col = 0; col < other_.get_num_fields(); ++col) {
            if (!reached.contains(static_cast<int>(col)) && countFilled(other_, col) != 0) {
                names.emplace_back(other_.get_fieldname(col));
            }
        }
        if (!names.empty()) {
            say("{}: {} dropped, which the table has no field for: {}", otherName_,
                counted(names.size(), "column"), listed(names));
        }
    }

    /// The table's own stay: those of the other that differ are told.
    void tellParametersNotTaken() const {
        std::vector<std::string> differing;
        for (unsigned i = 0; i < other_.get_num_params(); ++i) {
            const std::string name = other_.get_param_name(i);
            const char* const held = table_.get_param_val(name.c_str());
            const std::string offered = other_.get_param_val(name.c_str());
            const bool isOfFile = compareIgnoringCase(name, "OLEDB") == 0 ||
                                  compareIgnoringCase(name, FieldMap::parameterName) == 0;
            if (held && !isOfFile && offered != held) {
                differing.push_back(fmt::format("{} is {} there and {} here", name,
                                                inQuotes(offered), inQuotes(held)));
            }
        }
        if (!differing.empty()) {
            say("{}: parameters differ, and those of the table stay: {}", otherName_,
                fmt::join(differing, ", "));
        }
    }

    /// Identifiers name one row: each is known by the row that has it.
    void rememberCookies() {
        cookieCol_ = table_.get_fieldnum("Cookie");
        for (unsigned row = 0; cookieCol_ >= 0 && row < table_.get_num_records(); ++row) {
            const std::string cookie = cookieOf(table_, row);
            if (!cookie.empty()) {
                cookies_.emplace(cookie, rowAndName(table_, row));
            }
        }
    }

    [[nodiscard]] std::string cookieOf(const oledb& table, unsigned row) const {
        return plainCookie(valueOf(table, row, static_cast<unsigned>(cookieCol_)));
    }

    /// Rows that are added with the identifier of another row.
    void tellKnownCookies() {
        for (unsigned from = 0; cookieCol_ >= 0 && from < taken_.get_num_records(); ++from) {
            const std::string cookie = taken_.get_tag(from) != 0 ? "" : cookieOf(taken_, from);
            if (cookie.empty()) {
                continue;
            }
            const std::string name = fmt::format("{} of {}", rowAndName(taken_, from), otherName_);
            const auto [known, isNew] = cookies_.emplace(cookie, name);
            if (!isNew) {
                known_.tell(fmt::format("{} is added with the identifier that {} has", name,
                                        known->second));
            }
        }
        known_.close();
    }

    /// Tells rows that are added although they stand in the table; whether there are any.
    bool tellRepeated() {
        std::vector<unsigned> rows = repeatedRows({table_, 0, table_.get_num_records()},
                                                  {taken_, 0, taken_.get_num_records()});
        std::for_each(rows.begin(), rows.end(), [](unsigned& row) { ++row; });
        if (!rows.empty()) {
            say("{}: {} in the table already, with the same values wherever both have some: row "
                "{}; "
                "--by FIELD takes such rows as one",
                otherName_, counted(rows.size(), "row stands", "rows stand"), runsOf(rows));
        }
        return !rows.empty();
    }

    /// A value that is no timecode does not go from one form of timecodes to the other.
    void tellValuesNotTaken() {
        for (unsigned col = 0; col < table_.get_num_fields(); ++col) {
            const int from = other_.get_fieldnum(table_.get_fieldname(col));
            for (unsigned row = 0; from >= 0 && row < other_.get_num_records(); ++row) {
                const auto before = valueOf(other_, row, static_cast<unsigned>(from));
                if (!before.empty() && valueOf(taken_, row, col).empty()) {
                    unread_.tell(fmt::format("{}: {}: {}: {} is no timecode and is dropped",
                                             otherName_, rowAndName(other_, row),
                                             table_.get_fieldname(col), inQuotes(before)));
                }
            }
        }
        unread_.close();
    }

    /// Not a row's tag, which is its table's own, nor the keys, which are equal but for their case.
    [[nodiscard]] std::vector<unsigned> comparedColumns() const {
        std::vector<unsigned> columns;
        columns.reserve(table_.get_num_fields());
        for (unsigned col = 0; col < table_.get_num_fields(); ++col) {
            if (static_cast<int>(col) != table_.get_fieldnum("Tag") &&
                std::find(keys_.begin(), keys_.end(), col) == keys_.end()) {
                columns.push_back(col);
            }
        }
        return columns;
    }

    [[nodiscard]] Matches rowsByKey() const {
        Matches rows;
        for (unsigned row = 0; row < table_.get_num_records(); ++row) {
            rows.emplace(rowKey(table_, row, keys_), row);
        }
        return rows;
    }

    /// Tags the rows that find a match. Without a value in any key there is none.
    void fillMatches() {
        const Matches rows = rowsByKey();
        for (unsigned from = 0; from < taken_.get_num_records(); ++from) {
            const std::string key = rowKey(taken_, from, keys_);
            const auto [first, behind] = rows.equal_range(key);
            taken_.set_tag(from, !key.empty() && first != behind ? 1 : 0);
            if (!key.empty() && std::distance(first, behind) > 1) {
                tellAmbiguous(from, first, behind);
            }
            for (auto match = first; !key.empty() && match != behind; ++match) {
                fill(match->second, from);
                noteTag(match->second, from);
            }
        }
    }

    /// A key that several rows of the table have may put values into takes that they do not belong
    /// to: the first of these rows are told.
    void tellAmbiguous(unsigned from, Matches::const_iterator first,
                       Matches::const_iterator behind) {
        const auto count = std::distance(first, behind);
        std::vector<std::string> rows;
        std::transform(first, std::next(first, std::min(count, mostRowsTold)),
                       std::back_inserter(rows),
                       [this](const auto& match) { return rowAndName(table_, match.second); });
        ambiguous_.tell(fmt::format("{} of {} matches {} rows: {}{}; a further field in --by parts "
                                    "them",
                                    rowAndName(taken_, from), otherName_, count,
                                    fmt::join(rows, ", "), count > mostRowsTold ? ", ..." : ""));
    }

    /// A row's tag is its table's own, also where it has none.
    void noteTag(unsigned row, unsigned from) {
        const int found = table_.get_fieldnum("Tag");
        const auto col = static_cast<unsigned>(found);
        const auto isTagged = [col](const oledb& table, unsigned number) {
            return Tarn::parseInt(std::string{valueOf(table, number, col)}.c_str()) != 0;
        };
        tagsNotTaken_ += found >= 0 && isTagged(taken_, from) && !isTagged(table_, row) ? 1 : 0;
    }

    /// Whether an identifier may be given to a row: no other row has it. Says where one has.
    bool isFree(unsigned row, unsigned from) {
        const auto [known, isNew] =
            cookies_.emplace(cookieOf(taken_, from), rowAndName(table_, row));
        if (!isNew) {
            differences_.tell(
                fmt::format("{}: Cookie: the identifier of row {} of {} is not taken, "
                            "for {} has it",
                            rowAndName(table_, row), from + 1, otherName_, known->second));
        }
        return isNew;
    }

    /// The first values that were filled in, so that a wrong key is noticed.
    void tellFilled(unsigned row, unsigned col, std::string_view value) {
        if (filled_ < mostFilledTold) {
            note("{}: {}: {} {}filled in", rowAndName(table_, row), table_.get_fieldname(col),
                 inQuotes(value), would_);
        }
    }

    void fill(unsigned row, unsigned from) {
        for (const unsigned col : compared_) {
            const std::string_view offered = valueOf(taken_, from, col);
            const std::string_view held = valueOf(table_, row, col);
            if (offered.empty() || held == offered) {
                continue;
            }
            if (held.empty() && static_cast<int>(col) == cookieCol_ && !isFree(row, from)) {
                continue;
            }
            if (held.empty()) {
                tellFilled(row, col, offered);
                table_.set_field(row, col, offered.data());
                ++filled_;
                continue;
            }
            ++differing_;
            differences_.tell(fmt::format("{}: {}: {} stays; row {} of {} has {}",
                                          rowAndName(table_, row), table_.get_fieldname(col),
                                          inQuotes(held), from + 1, otherName_, inQuotes(offered)));
        }
    }

    [[nodiscard]] std::string differing() const {
        return differing_ == 0
                   ? ""
                   : fmt::format(", {} and {} as before", counted(differing_, "differs", "differ"),
                                 differing_ == 1 ? "stays" : "stay");
    }

    [[nodiscard]] std::string tagsNotTaken() const {
        return tagsNotTaken_ == 0
                   ? ""
                   : fmt::format("; {} of matching rows not taken", counted(tagsNotTaken_, "tag"));
    }

    oledb& table_;
    oledb& other_;
    oledb taken_; // the other's rows in this table's columns, tagged where they match
    std::string otherName_;
    std::vector<unsigned> keys_;
    std::vector<unsigned> compared_;
    Findings differences_;
    Findings unread_;
    Findings ambiguous_;
    std::string_view would_; // "would be " where nothing is written
    Findings known_;         // identifiers that stand in the table and are added again
    int cookieCol_ = -1;
    std::unordered_map<std::string, std::string> cookies_; // the row that has each
    std::size_t tagsNotTaken_ = 0;
    std::size_t filled_ = 0;
    std::size_t differing_ = 0;
};

EditOutcome mergeTables(oledb& table, oledb& other, const std::string& otherName,
                        const MergeOptions& options) {
    Merge merge{table, other, otherName};
    if (!options.by.empty()) {
        const auto keys = columnsOf(table, "--by", options.by);
        if (!keys || !merge.setKeys(*keys)) {
            return {.code = exitUsage};
        }
    }
    return merge.take() ? merge.run(options.edit) : EditOutcome{.code = exitFailure};
}

int runMerge(const MergeOptions& options) {
    if (options.edit.file == "-" && options.other == "-") {
        sayLine("standard input can be read only once");
        return exitUsage;
    }
    if (isSameFile(options.edit.file, options.other) ||
        isSameFile(options.other, options.edit.file)) {
        say("{} and {} are one file", options.edit.file, options.other);
        return exitUsage;
    }
    const auto file = InputFile::open(options.other);
    const LoadedTable other = file ? loadTable(*file) : LoadedTable{};
    if (!other.table) {
        return exitFailure;
    }
    const int code = runEdit(options.edit, [&](oledb& table) {
        return mergeTables(table, *other.table, file->name(), options);
    });
    return code == exitFine && !other.whole ? exitFindings : code;
}

} // namespace

void addMergeCommand(CLI::App& app, Task& task) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App* const command =
        app.add_subcommand("merge", "Add the rows of another table to a table file");
    addEditOptions(*command, options->edit);
    command->add_option("OTHER", options->other, "The table whose rows are taken")
        ->required()
        ->type_name("");
    command
        ->add_option("--by", options->by,
                     "Rows that are equal in these fields, ignoring case, are not added: they fill "
                     "the empty values of their matches; values that differ stay and are told")
        ->type_name("FIELD[,FIELD...]");
    addExample(*command, "olelog save day-12.odb -o prints.odb --where Notes=print\n"
                         "olelog merge day-12.odb prints.odb --by Name --dry-run");
    command->callback([options, &task] { task = [options] { return runMerge(*options); }; });
}
