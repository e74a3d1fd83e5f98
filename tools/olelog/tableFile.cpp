// Reading table files, and telling what the module only hints at. The module stops at the first
// row that does not fit and at a blank line, cuts lines that are too long, and passes over a second
// header; a person wants to know where.

#include "tableFile.h"

#include "messages.h"
#include "ole/oledb/dbrecord.h"
#include "Progress.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

constexpr std::string_view headerWord = "OLEDB";
constexpr std::size_t longestLine = 4095;
constexpr int currentRevision = 1;
constexpr unsigned short mostFields = 4096; // a line has at most so many
constexpr unsigned mostColumns = 255;
constexpr unsigned headerLines = 4;

bool isHeaderWord(std::string_view text) {
    return compareIgnoringCase(text, headerWord) == 0;
}

bool isRevision(std::string_view text) {
    return compareIgnoringCase(text, "OLEDB:", 6) == 0;
}

/// A line's fields as the module reads them.
dbrecord fieldsOf(std::string_view line) {
    TextFile file;
    file.appendLine(line);
    dbrecord row{mostFields};
    row.read(file);
    return row;
}

std::string firstField(std::string_view line) {
    TextFile file;
    file.appendLine(line);
    dbrecord row{1};
    row.read(file);
    return std::string{row.getField(0).view()};
}

unsigned countFields(std::string_view line) {
    return isEssentiallyEmpty(line) ? 0 : fieldsOf(line).nfields();
}

std::string valuesAndColumns(unsigned values, unsigned columns) {
    return counted(values, "value") + " for " + counted(columns, "column");
}

/// The last byte of a file, 0 where there is none.
char lastByte(const std::string& path) {
    std::ifstream file{path, std::ios::binary};
    char byte = '\0';
    file.seekg(-1, std::ios::end).get(byte);
    return byte;
}

/// Looks at the lines of a table file. Line numbers are those of the file, from 1; 0 means none.
class TableFileLines {
public:
    explicit TableFileLines(const InputFile& file)
        : name_{file.name()}, endsInLineFeed_{lastByte(file.path()) == '\n'} {
        text_.load(modulePath(file.path()), '\n', false);
        findHeader();
    }

    /// Why the module takes the file for no table.
    [[nodiscard]] std::string whyNoTable() const {
        if (text_.numLines() == 0) {
            return "the file is empty";
        }
        if (header_ == 0) {
            return whyNoHeader();
        }
        const unsigned columns = countFields(line(header_ + 1));
        if (columns == 0) {
            return fmt::format("line {}, which should tell the columns' widths, is {}", header_ + 1,
                               header_ < text_.numLines() ? "blank" : "missing");
        }
        if (columns > mostColumns) {
            return fmt::format("line {} tells of {} columns, and {} is the most that can be read",
                               header_ + 1, columns, mostColumns);
        }
        return whyBrokenHeader(columns);
    }

    /// Tells what the module did not read; returns whether there was any such thing.
    bool tellLosses(oledb& table) const {
        dberror error;
        const bool failed = table.read_error_info(error);
        const bool lostParameters = tellLostParameters();
        if (failed && error.code == 1) {
            tellWrongRow(table, static_cast<unsigned>(error.where));
            return true;
        }
        if (failed) {
            say("{}: line {}: a column's type is unknown; it is read as text", name_, header_ + 2);
        }
        const bool lost = tellBadLines() || lostParameters;
        return tellLinesBehindBlank() || tellCutEnd() || lost || failed;
    }

    /// The line of the first row; 0 where a second header takes some of the lines behind it.
    [[nodiscard]] unsigned firstRowLine() const {
        return hasSecondHeader(text_.numLines()) ? 0 : header_ + headerLines;
    }

private:
    [[nodiscard]] std::string_view line(unsigned number) const {
        return text_.lineView(number - 1);
    }

    /// The header stands behind the parameters, the first of which tells the revision.
    void findHeader() {
        const bool hasParameters = isRevision(firstField(line(1)));
        const unsigned last = hasParameters ? text_.numLines() : 1;
        for (unsigned number = 1; number <= last && header_ == 0; ++number) {
            if (isEssentiallyEmpty(line(number))) {
                return;
            }
            header_ = isHeaderWord(firstField(line(number))) ? number : 0;
        }
    }

    [[nodiscard]] std::string whyNoHeader() const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            if (line(number).starts_with("Column")) {
                return "this is a log, not a table file; \"olelog import\" makes a table of it";
            }
        }
        return isRevision(firstField(line(1)))
                   ? "the file is cut: it ends before the line \"OLEDB\" and the columns"
                   : "this is no table file: a line \"OLEDB\" and the columns are missing";
    }

    [[nodiscard]] std::string whyBrokenHeader(unsigned columns) const {
        for (const unsigned number : {header_ + 2, header_ + 3}) {
            const unsigned found = countFields(line(number));
            if (found != columns) {
                return fmt::format("line {}, with the columns' {}, has {}; line {} tells of {}",
                                   number, number == header_ + 2 ? "types" : "names",
                                   counted(found, "value"), header_ + 1,
                                   counted(columns, "column"));
            }
        }
        return "the header is damaged";
    }

    void tellWrongRow(oledb& table, unsigned rowsBefore) const {
        const unsigned number = header_ + headerLines + rowsBefore;
        const unsigned found = countFields(line(number));
        // With a second header before it, the row stands elsewhere.
        const bool located = found != table.get_num_fields() && !hasSecondHeader(number);
        const std::string where =
            located ? fmt::format("line {}", number) : "row " + std::to_string(rowsBefore + 1);
        const std::string what = located ? valuesAndColumns(found, table.get_num_fields())
                                         : "the wrong number of values";
        say("{}: {}: row {} has {}{}; reading stopped there, with {} read", name_, where,
            rowsBefore + 1, what,
            located && line(number).size() > longestLine
                ? fmt::format(" in its first {} bytes, which is where a line ends", longestLine)
                : "",
            counted(table.get_num_records(), "row"));
    }

    [[nodiscard]] bool hasSecondHeader(unsigned before) const {
        for (unsigned number = header_ + headerLines; number < before; ++number) {
            if (startsSecondHeader(line(number))) {
                return true;
            }
        }
        return false;
    }

    static bool startsSecondHeader(std::string_view text) {
        return text.find(headerWord) != std::string_view::npos && firstField(text) == headerWord;
    }

    /// Parameters for which there is no room are losses. Lines that are none were never more.
    bool tellLostParameters() const {
        Findings none;
        Findings lost;
        unsigned taken = 0;
        for (unsigned number = 1; number < header_; ++number) {
            const std::string text = firstField(line(number));
            const std::size_t colon = text.find(':');
            if (colon == std::string::npos || colon == 0) {
                none.tell(fmt::format("{}: line {}: is no parameter, name:value, and was not read",
                                      name_, number));
            } else if (++taken > oledb::maxParams) {
                lost.tell(fmt::format("{}: line {}: the parameter {} was not read; a table has "
                                      "room for {}",
                                      name_, number, inQuotes(text.substr(0, colon)),
                                      oledb::maxParams));
            }
        }
        none.close();
        lost.close();
        return lost.any();
    }

    /// Lines that the module read otherwise than they stand.
    bool tellBadLines() const {
        bool any = false;
        const unsigned last = lastLine();
        for (unsigned number = 1; number <= last; ++number) {
            const std::string_view text = line(number);
            if (text.size() > longestLine) {
                say("{}: line {}: longer than {} bytes; the rest of it was not read", name_, number,
                    longestLine);
                any = true;
            }
            if (number >= header_ + headerLines && startsSecondHeader(text)) {
                say("{}: line {}: a second header; it and the two lines behind it were not read",
                    name_, number);
                any = true;
            }
            if (text.find('\0') != std::string_view::npos) {
                say("{}: line {}: holds a zero byte; what follows on the line was not read", name_,
                    number);
                any = true;
            }
        }
        return any;
    }

    /// The last line before the one that ends the rows.
    [[nodiscard]] unsigned lastLine() const {
        unsigned number = header_ + headerLines - 1;
        while (number < text_.numLines() && !isEssentiallyEmpty(line(number + 1))) {
            ++number;
        }
        return number;
    }

    bool tellLinesBehindBlank() const {
        const unsigned blank = lastLine() + 1;
        unsigned behind = 0;
        for (unsigned number = blank + 1; number <= text_.numLines(); ++number) {
            behind += isEssentiallyEmpty(line(number)) ? 0 : 1;
        }
        if (behind != 0) {
            say("{}: line {}: is blank, which ends the table; {} behind it {} not read", name_,
                blank, counted(behind, "line"), behind == 1 ? "was" : "were");
        }
        return behind != 0;
    }

    /// A table is written with every value in quotes and every line ended, so a file that ends
    /// within quotes or at a comma was cut.
    bool tellCutEnd() const {
        const std::string_view last = line(text_.numLines());
        const bool isCut =
            !endsInLineFeed_ &&
            (std::count(last.begin(), last.end(), '"') % 2 != 0 || last.ends_with(','));
        if (isCut) {
            say("{}: line {}: the file is cut: it ends within this line", name_, text_.numLines());
        }
        return isCut;
    }

    std::string name_;
    TextFile text_;
    bool endsInLineFeed_;
    unsigned header_ = 0; // the line "OLEDB"
};

} // namespace

std::unique_ptr<oledb> loadTableQuietly(const std::string& path) {
    const ModuleSilence silence;
    return std::make_unique<oledb>(modulePath(path), INT_MAX, true);
}

LoadedTable loadTable(const InputFile& file) {
    const Progress progress{"reading " + file.name()};
    LoadedTable loaded{loadTableQuietly(file.path()), true};
    const TableFileLines lines{file};
    oledb& table = *loaded.table;
    if (table.get_valid() == 0 || table.get_num_fields() == 0) {
        say("{}: {}", file.name(), lines.whyNoTable());
        return {};
    }
    if (table.get_revision() != currentRevision) {
        say("{}: is of revision {} and was read as one of revision {}", file.name(),
            table.get_revision(), currentRevision);
    }
    loaded.whole = !lines.tellLosses(table);
    loaded.firstRowLine = lines.firstRowLine();
    return loaded;
}

std::string placeOf(const LoadedTable& loaded, const InputFile& file, unsigned row) {
    return loaded.firstRowLine == 0 ? fmt::format("{}: row {}", file.name(), row + 1)
                                    : fmt::format("{}:{}", file.name(), loaded.firstRowLine + row);
}

bool isForeignFile(const std::string& path) {
    std::error_code failed;
    if (!std::filesystem::is_regular_file(path, failed) ||
        std::filesystem::file_size(path, failed) == 0 || failed) {
        return false;
    }
    return oledb{modulePath(path), 0, true}.get_valid() == 0;
}

bool isTableFile(const std::string& path) {
    const ModuleSilence silence;
    std::error_code failed;
    return std::filesystem::is_regular_file(path, failed) && !failed &&
           oledb{modulePath(path), 0, true}.get_valid() != 0;
}
