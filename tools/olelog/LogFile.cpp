// What stands in a log before its data, and why a log is none. The import itself only tells which
// of its words it missed; people want to know what their file is instead.

#include "LogFile.h"

#include "messages.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

namespace {

constexpr std::string_view columnWord = "Column";
constexpr std::string_view dataWord = "Data";
constexpr std::size_t bytesToJudge = 256;

std::vector<std::string_view> pieces(std::string_view line, Tarn::SplitMode mode) {
    std::vector<std::string_view> found;
    Tarn::splitIf(line, Tarn::IsMatchingChar{'\t'}, found, mode);
    return found;
}

bool looksLikeUtf16(std::string_view start) {
    if (start.starts_with("\xFF\xFE") || start.starts_with("\xFE\xFF")) {
        return true;
    }
    const auto zeros = std::count(start.begin(), start.end(), '\0');
    return start.size() >= 8 && static_cast<std::size_t>(zeros) * 3 >= start.size();
}

class HeadReader {
public:
    explicit HeadReader(const InputFile& log) {
        text_.load(modulePath(log.path()), '\n', true);
        findWords();
    }

    LogHead read() {
        head_.refusal = whyRefused();
        if (head_.refusal.empty()) {
            head_.namesLine = columnLine_ + 1;
            takeNames();
            takeParameters();
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

    void findWords() {
        for (unsigned number = 1; number <= text_.numLines() && dataLine_ == 0; ++number) {
            if (columnLine_ == 0 && line(number).starts_with(columnWord)) {
                columnLine_ = number;
            }
            dataLine_ = line(number).starts_with(dataWord) ? number : 0;
        }
    }

    [[nodiscard]] std::string whyRefused() const {
        if (text_.numLines() == 0) {
            return "the file is empty";
        }
        if (dataLine_ == 0 || columnLine_ == 0) {
            return whyWordMissing();
        }
        const unsigned names = columnLine_ + 1;
        if (isEssentiallyEmpty(line(names))) {
            return fmt::format("line {}, behind \"Column\", is blank where the column names should "
                               "stand; without that blank line the log can be taken",
                               names);
        }
        if (names == dataLine_ && Tarn::trimmed(line(names)) == dataWord) {
            return fmt::format("the column names are missing between \"Column\" in line {} and "
                               "\"Data\" in line {}",
                               columnLine_, dataLine_);
        }
        return {};
    }

    [[nodiscard]] std::string whyWordMissing() const {
        const std::string_view first = text_.lineView(0);
        if (looksLikeUtf16(first.substr(0, bytesToJudge))) {
            return "the file is UTF-16 text; convert it to UTF-8 first, for example with "
                   "iconv -f UTF-16 -t UTF-8";
        }
        if (first.starts_with("\"OLEDB")) {
            return "this is a table file, not a log; \"olelog show\" prints it";
        }
        if (hasLoneCarriageReturns()) {
            return "its lines end with CR alone; convert them first, for example with "
                   "tr '\\r' '\\n'";
        }
        const std::string_view word = dataLine_ == 0 ? dataWord : columnWord;
        const std::string where = dataLine_ == 0 ? "" : fmt::format(" before line {}", dataLine_);
        return fmt::format("no line{} begins with \"{}\"{}", where, word, nearMiss(word));
    }

    /// Whether carriage returns stand where lines of a log would end.
    [[nodiscard]] bool hasLoneCarriageReturns() const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            const std::string_view text = text_.lineView(number - 1);
            if (text.find("\rColumn") != std::string_view::npos ||
                text.find("\rData") != std::string_view::npos) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] std::string nearMiss(std::string_view word) const {
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            const std::string_view text = Tarn::trimmed(line(number));
            const std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
            if (compareIgnoringCase(text.substr(at), word) == 0) {
                return fmt::format("; line {} reads {}", number, inQuotes(line(number)));
            }
        }
        return {};
    }

    void takeNames() {
        for (const std::string_view name : pieces(line(head_.namesLine), Tarn::eSplitMerging)) {
            head_.columns.emplace_back(name);
        }
    }

    void takeParameters() {
        for (unsigned number = 2; number <= columnLine_; ++number) {
            const auto found = pieces(line(number), Tarn::eSplitMerging);
            if (found.size() == 2) {
                head_.parameters.push_back({std::string{found[0]}, std::string{found[1]}});
            } else if (found.size() > 2) {
                head_.oddLines.push_back(fmt::format(
                    "heading line {} not taken ({} where a name and a value should stand)", number,
                    counted(found.size(), "text")));
            }
        }
    }

    void noteOddLines() {
        if (head_.namesLine == dataLine_) {
            head_.oddLines.push_back(fmt::format(
                "line {} counts as the column names and as \"Data\", for it begins with that word",
                dataLine_));
        }
        for (unsigned number = 1; number <= text_.numLines(); ++number) {
            if (line(number).size() != text_.lineView(number - 1).size()) {
                head_.zeroLines.push_back(std::to_string(number));
            }
            const bool isRow = number > dataLine_ && !isEssentiallyEmpty(line(number));
            if (isRow && line(number).front() == '\t') {
                head_.shiftedLines.push_back(std::to_string(number));
            }
        }
    }

    TextFile text_;
    LogHead head_;
    unsigned columnLine_ = 0;
    unsigned dataLine_ = 0;
};

} // namespace

LogHead readLogHead(const InputFile& log) {
    return HeadReader{log}.read();
}

std::vector<std::string_view> piecesOfRow(std::string_view line) {
    return pieces(line.substr(0, line.find('\0')), Tarn::eSplitPlain);
}
