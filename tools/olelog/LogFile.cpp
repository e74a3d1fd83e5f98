// What stands in a log before its data, and why a log is none. The import itself only tells which
// of its words it missed; people want to know what their file is instead.

#include "LogFile.h"

#include "check/knownTitles.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>

namespace {

constexpr std::string_view headingWord = "Heading";
constexpr std::string_view columnWord = "Column";
constexpr std::string_view dataWord = "Data";
constexpr std::string_view filmFormatWord = "FILM_FORMAT";
constexpr std::size_t bytesToJudge = 256;

std::vector<std::string_view> pieces(std::string_view line, Tarn::SplitMode mode) {
    std::vector<std::string_view> found;
    Tarn::splitIf(line, Tarn::IsMatchingChar{'\t'}, found, mode);
    return found;
}

} // namespace

bool looksLikeUtf16(std::string_view text) {
    const std::string_view start = text.substr(0, bytesToJudge);
    if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
        return true;
    }
    const auto zeros = std::count(start.begin(), start.end(), '\0');
    return start.size() >= 8 && static_cast<std::size_t>(zeros) * 3 >= start.size();
}

bool endsLinesWithCr(std::string_view text) {
    return text.find("\rColumn") != std::string_view::npos ||
           text.find("\rData") != std::string_view::npos;
}

LogWords findLogWords(unsigned lines, const std::function<std::string_view(unsigned)>& line) {
    LogWords words;
    for (unsigned number = 1; number <= lines && words.data == 0; ++number) {
        if (words.column == 0 && line(number).starts_with(columnWord)) {
            words.column = number;
        }
        words.data = line(number).starts_with(dataWord) ? number : 0;
    }
    return words;
}

namespace {

class HeadReader {
public:
    explicit HeadReader(const InputFile& log) {
        text_.load(modulePath(log.path()), '\n', true);
        words_ = findLogWords(text_.numLines(), [this](unsigned number) { return line(number); });
    }

    LogHead read() {
        head_.words = words_;
        judge();
        if (head_.refusal.empty()) {
            head_.namesLine = words_.column + 1;
            takeNames();
            takeParameters();
            noteRepeated();
            noteFilmFormats();
            noteUnreadLines();
            noteOddLines();
        }
        return std::move(head_);
    }

private:
    /// Line by number, from 1, as the import reads it: up to a zero byte.
    [[nodiscard]] std::string_view line(unsigned number) const {
        const std::string_view whole = text_.lineView(number - 1);
        return whole.substr(0, whole.find('\0'));
    }

    void refuse(std::string code, unsigned line, std::string why) {
        head_.refusalCode = std::move(code);
        head_.refusalLine = line;
        head_.refusal = std::move(why);
    }

    void judge() {
        if (text_.numLines() == 0) {
            refuse("empty-file", 1, "the file is empty");
        } else if (words_.data == 0 || words_.column == 0) {
            refuseWithoutWords();
        } else if (isEssentiallyEmpty(line(words_.column + 1))) {
            refuse(
                "blank-names", words_.column + 1,
                fmt::format(
                    "line {}, behind \"Column\", is blank where the column names should "
                    "stand; without that blank line the log can be taken, and olelog check --fix "
                    "takes it away",
                    words_.column + 1));
        } else if (words_.column + 1 == words_.data &&
                   Tarn::trimmed(line(words_.data)) == dataWord) {
            refuse("no-names", words_.data,
                   fmt::format("the column names are missing between \"Column\" in line {} and "
                               "\"Data\" in line {}",
                               words_.column, words_.data));
        }
    }

    void refuseWithoutWords() {
        const std::string_view first = text_.lineView(0);
        if (looksLikeUtf16(first)) {
            refuse("utf-16", 1,
                   "the file is UTF-16 text; convert it to UTF-8 first, for example with "
                   "olelog check --fix");
        } else if (first.starts_with("\"OLEDB")) {
            refuse("table-file", 1, "this is a table file, not a log; \"olelog show\" prints it");
        } else if (hasLoneCarriageReturns()) {
            refuse("cr-line-ends", 1,
                   "its lines end with CR alone; convert them first, for example with "
                   "olelog check --fix");
        } else {
            refuseForWord();
        }
    }

    void refuseForWord() {
        const std::string_view word = words_.data == 0 ? dataWord : columnWord;
        const std::string where =
            words_.data == 0 ? "" : fmt::format(" before line {}", words_.data);
        const unsigned near = nearMiss(word);
        const std::string hint =
            near == 0 ? "" : fmt::format("; line {} reads {}", near, inQuotes(line(near)));
        refuse("section-word", near != 0 ? near : std::max(words_.data, 1U),
               fmt::format("no line{} begins with \"{}\"{}", where, word,
                           near != 0 ? hint + ", and olelog check --fix spells it so"
                                     : "; it is no ALE log, or one that is cut short"));
    }

    [[nodiscard]] bool hasLoneCarriageReturns() const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            if (endsLinesWithCr(text_.lineView(number - 1))) {
                return true;
            }
        }
        return false;
    }

    /// A line that is the word but for one letter; the names may be such.
    [[nodiscard]] unsigned misspelt(std::string_view word) const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            if (number != words_.column + 1 && isOneSlip(Tarn::trimmed(line(number)), word)) {
                return number;
            }
        }
        return 0;
    }

    /// A line that is the word but for its case, blanks around it or a byte order mark.
    [[nodiscard]] unsigned nearMiss(std::string_view word) const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            const std::string_view text = Tarn::trimmed(line(number));
            const std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
            if (compareIgnoringCase(text.substr(at), word) == 0) {
                return number;
            }
        }
        return misspelt(word);
    }

    void takeNames() {
        for (const std::string_view name : piecesOfHeading(line(head_.namesLine))) {
            head_.columns.emplace_back(name);
        }
    }

    void takeParameters() {
        for (unsigned number = 2; number <= words_.column; ++number) {
            const auto found = piecesOfHeading(line(number));
            if (found.size() == 2) {
                head_.parameters.push_back({std::string{found[0]}, std::string{found[1]}});
            } else if (found.size() > 2) {
                head_.oddLines.push_back(
                    {number, fmt::format("heading line {} not taken ({} where a name and a value "
                                         "should stand)",
                                         number, counted(found.size(), "text"))});
            }
        }
    }

    /// Names that stand twice, in any case: the last value counts.
    void noteRepeated() {
        std::map<LightweightString<char>, std::string, StrCmpCI> values;
        for (unsigned number = 2; number <= words_.column; ++number) {
            const auto found = piecesOfHeading(line(number));
            if (found.size() != 2) {
                continue;
            }
            const std::string value{found[1]};
            const auto [known, isNew] = values.emplace(LightweightString<char>{found[0]}, value);
            if (!isNew && known->second != value) {
                head_.repeated.push_back(
                    {number,
                     fmt::format("{} stands twice in the heading; its value {} takes the "
                                 "place of {}",
                                 inQuotes(found[0]), inQuotes(value), inQuotes(known->second))});
                known->second = value;
            }
        }
    }

    void noteFilmFormats() {
        for (unsigned number = 1; number < words_.data; ++number) {
            const auto found = piecesOfHeading(line(number));
            if (!line(number).starts_with(filmFormatWord)) {
                continue;
            }
            head_.filmFormat = {number, std::string{line(number)}};
            std::string value{found.size() == 2 ? found[1] : std::string_view{}};
            std::erase(value, ' ');
            if (found.size() == 2 && value != "16mm" && !value.starts_with("35mm")) {
                head_.unknownFilm.push_back(
                    {number, fmt::format("the film format {} is read as 35 mm (F35); the import "
                                         "knows 16mm, 35mm and \"35mm, 3perf\", to the letter",
                                         inQuotes(found[1]))});
            }
        }
    }

    /// Lines between the names and the rows are passed over.
    void noteUnreadLines() {
        for (unsigned number = head_.namesLine + 1; number < words_.data; ++number) {
            if (!isEssentiallyEmpty(line(number))) {
                head_.unreadLines.push_back(
                    {number, fmt::format("{} is not read: it stands between the column names and "
                                         "\"Data\"",
                                         inQuotes(line(number)))});
            }
        }
    }

    void noteOddLines() {
        if (head_.namesLine == words_.data) {
            head_.oddLines.push_back(
                {words_.data, fmt::format("line {} counts as the column names and as \"Data\", for "
                                          "it begins with that word",
                                          words_.data)});
        }
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            if (line(number).size() != text_.lineView(number - 1).size()) {
                head_.zeroLines.push_back(number);
            }
            const bool isRow = number > words_.data && !isEssentiallyEmpty(line(number));
            if (isRow && line(number).front() == '\t') {
                head_.shiftedLines.push_back(number);
            }
            if (isRow) {
                noteShortRow(number);
            }
        }
    }

    /// Tabs at the end are values, if empty ones: a row that lacks them was cut, or filled in by
    /// hand.
    void noteShortRow(unsigned number) {
        const std::string_view row = text_.lineView(number - 1);
        const auto cells = static_cast<std::size_t>(std::count(row.begin(), row.end(), '\t')) + 1;
        if (cells < head_.columns.size()) {
            head_.shortRows.push_back({number, cells});
        }
    }

    TextFile text_;
    LogHead head_;
    LogWords words_;
};

/// Whether a file's first line is "Heading", the zero bytes and marks of Unicode aside.
bool beginsWithHeading(std::istream& file) {
    std::string word;
    char byte = '\0';
    while (word.size() <= headingWord.size() && file.get(byte)) {
        const bool isMark =
            std::string_view{"\xEF\xBB\xBF\xFF\xFE"}.find(byte) != std::string::npos;
        word += byte == '\0' || isMark ? std::string{} : std::string{byte};
    }
    return compareIgnoringCase(Tarn::trimmed(std::string_view{word}), headingWord) == 0;
}

} // namespace

LogHead readLogHead(const InputFile& log) {
    return HeadReader{log}.read();
}

bool isLogFile(const std::string& path) {
    std::error_code failed;
    std::ifstream file{path, std::ios::binary};
    if (!file || !std::filesystem::is_regular_file(path, failed)) {
        return false;
    }
    if (beginsWithHeading(file)) {
        return true;
    }
    const auto log = InputFile::open(path);
    return log && readLogHead(*log).refusal.empty();
}

std::string describeShortRow(const LogHead& head, const LogHead::ShortRow& row) {
    constexpr std::size_t mostNamed = 5;
    const std::vector<std::string> missing{
        head.columns.begin() + static_cast<std::ptrdiff_t>(row.cells), head.columns.end()};
    return fmt::format(
        "the row has {} for {}; without a value: {}; if a cell is missing, the values "
        "behind it stand one column too far left",
        counted(row.cells, "value"), counted(head.columns.size(), "column name"),
        listed(missing, mostNamed));
}

std::vector<std::string> parametersNotTaken(const LogHead& head, const oledb& table) {
    std::map<LightweightString<char>, std::string, StrCmpCI> wanted;
    for (const LogHead::Parameter& parameter : head.parameters) {
        wanted[parameter.name.c_str()] = parameter.value; // the last value of a name counts
    }
    std::vector<std::string> missing;
    for (const auto& [name, value] : wanted) {
        const char* const held = table.get_param_val(name.c_str());
        if (!held || value != held) {
            missing.emplace_back(name.view());
        }
    }
    return missing;
}

std::vector<std::string_view> piecesOfHeading(std::string_view line) {
    return pieces(line, Tarn::eSplitMerging);
}

std::vector<std::string_view> piecesOfRow(std::string_view line) {
    return pieces(line.substr(0, line.find('\0')), Tarn::eSplitPlain);
}
