// ALE logs: every line behind "Data" becomes the row that the plain reading of it gives, or is
// reported; what is reported agrees with what the table holds.

#include "ole/interchange/ALE.h"
#include "support/KeyNumberModel.h"

#include "Fuzz.h"

#include <sstream>

namespace {

const Columns columns = {"Name",     "notes",      "start keycode", "film label_std",
                         "snd reel", "start time", "\tCamera"};
constexpr std::size_t filmLabel = 3;

// Fixed: the room for an empty file of unknown size, and ALE's columns, made once. The dearest line
// is "x": two bytes for a row with its slots, a string, its place in the table, the line's start
// and its number in the report, lists growing by doubling: 77 bytes and 2 allocations a byte.
constexpr Bounds importing{.live = {80'000, 150}, .sum = {80'000, 200}, .blocks = {100, 4}};

std::string withoutTrail(const std::string& text, const char* white) {
    return text.substr(0, text.find_last_not_of(white) + 1);
}

Texts linesOf(std::string_view bytes) {
    Texts lines;
    std::istringstream stream{std::string{bytes}};
    for (std::string line; std::getline(stream, line);) {
        line.resize(line.size() - (line.ends_with('\r') ? 1 : 0));
        lines.emplace_back(line.c_str());
    }
    return lines;
}

/// Pieces between tabs, at least one; none of a tab at either end. `merging` gives the tab that
/// follows a tab to the next piece.
Texts cut(const std::string& line, bool merging) {
    Texts pieces;
    std::size_t at = line.starts_with('\t') ? 1 : 0;
    while (at < line.size()) {
        const std::size_t from = merging ? line.find_first_not_of('\t', at) : at;
        const std::size_t tab = std::min(line.find('\t', from), line.size());
        pieces.push_back(line.substr(at, tab - at));
        at = tab + 1;
    }
    return pieces.empty() ? Texts{""} : pieces;
}

void addTo(std::string& value, const std::string& piece, bool keyNumber) {
    value = withoutTrail(value.empty() ? piece : value + ", " + piece, " ");
    const bool blank = value.find_first_not_of(" \t\r\n") == std::string::npos;
    if (keyNumber && !blank && value != "??") {
        value = keyNumberByTheRule(value);
    }
    value.erase(0, std::min(value.find_first_not_of(" \t\n\v\f\r"), value.size()));
}

class Log {
public:
    explicit Log(std::string_view bytes) : lines_{linesOf(bytes)} {}

    void expectImported(oledb& table, const ALE::Report& report) {
        const auto begins = [](const char* word) {
            return [word](const std::string& line) { return line.starts_with(word); };
        };
        const auto data = std::find_if(lines_.begin(), lines_.end(), begins("Data"));
        const auto names = std::find_if(lines_.begin(), data, begins("Column"));
        // A line may begin the names and the data: "Data" follows "Column" at once.
        if (data == lines_.end() || names == data) {
            ASSERT_EQ(table.get_num_records() + table.get_num_params(), 0U);
            return;
        }
        takeNames(table, *(names + 1), report);
        for (auto line = data + 1; line != lines_.end(); ++line) {
            ASSERT_NO_FATAL_FAILURE(expectLine(table, report, line));
        }
        ASSERT_EQ(rows_, table.get_num_records());
        ASSERT_EQ(rows_, report.recordsAdded);
        ASSERT_EQ(skipped_, report.skippedLines.size());
    }

private:
    void takeNames(oledb& table, const std::string& line, const ALE::Report& report) {
        const Texts names = cut(line, true);
        ASSERT_TRUE(std::equal(names.begin(), names.end(), report.columns.begin(),
                               report.columns.end(),
                               [](auto& a, auto& b) { return b == a.c_str(); }));
        for (const std::string& name : names) {
            keyNumber_ = name == "KN Start" ? fields_.size() : keyNumber_;
            fields_.push_back(ALE::findODBColumnFor(table, name.c_str()));
            ASSERT_LT(fields_.back(), static_cast<int>(columns.size()));
        }
    }
    void expectLine(oledb& table, const ALE::Report& report, Texts::const_iterator line) {
        const auto number = static_cast<unsigned>(line - lines_.begin()) + 1;
        const Texts pieces = cut(*line, false);
        if (line->find_first_not_of(" \t\r\n") == std::string::npos) {
            return;
        }
        if (pieces.size() > fields_.size()) {
            ASSERT_LT(skipped_, report.skippedLines.size());
            ASSERT_EQ(report.skippedLines[skipped_].line, number);
            ASSERT_EQ(report.skippedLines[skipped_++].fields, pieces.size());
            return;
        }
        Texts values(columns.size());
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            if (fields_[i] >= 0) {
                addTo(values[static_cast<std::size_t>(fields_[i])], pieces[i], i == keyNumber_);
            }
        }
        ASSERT_LT(rows_, report.rowLines.size());
        ASSERT_EQ(report.rowLines[rows_], number);
        Texts real = valuesOf(*table.get_record(rows_++));
        if (real[filmLabel].starts_with('F')) { // written over the column's value
            values[filmLabel] = real[filmLabel];
        }
        ASSERT_EQ(real, values) << "line " << number;
    }

    Texts lines_;
    std::vector<int> fields_;
    std::size_t keyNumber_ = ~std::size_t{0};
    unsigned rows_ = 0;
    unsigned skipped_ = 0;
};

} // namespace

void fuzz(std::string_view input) {
    setenv("OLE_PREFS_DIR", files().path("no preferences").c_str(), 1);
    const auto table = makeTable(columns);
    ALE::Report report;
    const auto path = written("log", input);
    const bool result =
        within(importing, input.size(), [&] { return ALE::fillODB(*table, path, report); });
    ASSERT_EQ(result, table->get_num_records() != 0);
    ASSERT_LE(table->get_num_params(), oledb::maxParams);
    Log{input}.expectImported(*table, report);
}
