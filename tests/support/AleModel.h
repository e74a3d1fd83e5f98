#pragma once

// ALE logs read the slow way, straight from the rules of the format: what an import must have made
// of a log's lines, nothing shared with the module.

#include "ole/interchange/ALE.h"
#include "support/KeyNumberModel.h"
#include "support/Tables.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <strings.h>
#include <vector>

namespace AleModel {

/// The columns of the table that logs are imported into.
inline const Columns columns = {"Name",     "notes",      "start keycode", "film label_std",
                                "snd reel", "start time", "\tCamera"};
constexpr std::size_t filmLabelColumn = 3;

inline std::string withoutTrail(const std::string& text, const char* white) {
    return text.substr(0, text.find_last_not_of(white) + 1);
}

inline Texts linesOf(std::string_view bytes) {
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
inline Texts cut(const std::string& line, bool merging) {
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

inline void addTo(std::string& value, const std::string& piece, bool keyNumber) {
    value = withoutTrail(value.empty() ? piece : value + ", " + piece, " ");
    const bool blank = value.find_first_not_of(" \t\r\n") == std::string::npos;
    if (keyNumber && !blank && value != "??") {
        value = keyNumberByTheRule(value);
    }
    value.erase(0, std::min(value.find_first_not_of(" \t\n\v\f\r"), value.size()));
}

/// Parameters as "name=value", each name once; the first one brings the revision along.
class Parameters {
public:
    void set(const std::string& name, const std::string& value) {
        if (name.empty()) {
            return;
        }
        const auto known = std::find_if(names_.begin(), names_.end(), [&](auto& held) {
            return strcasecmp(held.c_str(), name.c_str()) == 0;
        });
        if (known != names_.end()) {
            values_[static_cast<std::size_t>(known - names_.begin())] = value;
            return;
        }
        if (names_.empty()) {
            add("OLEDB", "Rev 1");
        }
        if (name != "OLEDB" && names_.size() < 40) {
            add(name, value);
        }
    }
    [[nodiscard]] Texts all() const {
        Texts all;
        for (std::size_t i = 0; i < names_.size(); ++i) {
            all.push_back(names_[i] + "=" + values_[i]);
        }
        return all;
    }

private:
    void add(const std::string& name, const std::string& value) {
        names_.push_back(name);
        values_.push_back(value);
    }

    Texts names_;
    Texts values_;
};

/// The label of a line that says the film's format.
inline std::string filmLabelBy(const std::string& line) {
    const std::size_t tab = line.find('\t');
    std::string format = line.substr(tab == std::string::npos ? 0 : tab + 1, 15);
    std::erase(format, ' ');
    if (format == "16mm") {
        return "F16";
    }
    return format == "35mm,3perf" || format == "35mm(3perf)" ? "F353" : "F35";
}

/// The lines of a log.
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
        ASSERT_EQ(paramsOf(table), parametersUpTo(names));
        takeFilmLabel(data);
        takeNames(table, *(names + 1), report);
        for (auto line = data + 1; line != lines_.end(); ++line) {
            ASSERT_NO_FATAL_FAILURE(expectLine(table, report, line));
        }
        ASSERT_EQ(rows_, table.get_num_records());
        ASSERT_EQ(rows_, report.recordsAdded);
        ASSERT_EQ(skipped_, report.skippedLines.size());
    }

private:
    /// Lines of two pieces, but for the first line.
    [[nodiscard]] Texts parametersUpTo(Texts::const_iterator columnLine) const {
        Parameters parameters;
        for (auto line = lines_.begin(); line != columnLine;) {
            const Texts pieces = cut(*++line, true);
            if (pieces.size() == 2) {
                parameters.set(pieces[0], pieces[1]);
            }
        }
        return parameters.all();
    }
    void takeFilmLabel(Texts::const_iterator data) {
        for (auto line = lines_.cbegin(); line != data; ++line) {
            filmLabel_ = line->starts_with("FILM_FORMAT") ? filmLabelBy(*line) : filmLabel_;
        }
    }
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
        if (!filmLabel_.empty()) { // written over the column's value
            values[filmLabelColumn] = filmLabel_;
        }
        ASSERT_EQ(valuesOf(*table.get_record(rows_++)), values) << "line " << number;
    }

    Texts lines_;
    std::string filmLabel_;
    std::vector<int> fields_;
    std::size_t keyNumber_ = ~std::size_t{0};
    unsigned rows_ = 0;
    unsigned skipped_ = 0;
};

} // namespace AleModel
