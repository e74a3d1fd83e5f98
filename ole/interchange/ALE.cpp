// Import of ALE logs.
//
//   log     = heading "Column" names "Data" { row }
//   heading = { any line }         lines of two pieces, but for the first line, become parameters
//   names   = the line behind "Column", piece by piece
//   row     = pieces for the first columns; the others stay empty
//
// Pieces stand between tabs. In the heading and the names a tab that follows a tab belongs to the
// next piece; in rows every tab cuts. A tab at the start or the end of a line makes no piece.
// "Column" and "Data" are recognised by how a line begins.

#include "ole/interchange/ALE.h"

#include "misc/SystemWatchdog.h"
#include "ole/interchange/AleColumns.h"
#include "ole/interchange/KeyNumber.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/RecentValues.h"
#include "ole/Tarn/Vector.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Pieces = std::vector<std::string_view>;

constexpr std::string_view filmFormatWord = "FILM_FORMAT";
constexpr std::string_view columnWord = "Column";
constexpr std::string_view dataWord = "Data";
constexpr std::string_view keyNumberColumn = "KN Start";
constexpr std::string_view unknownKeyNumber = "??";
constexpr const char* filmLabelField = "film label_std";
constexpr std::size_t longestFilmFormat = 15;
constexpr unsigned linesBetweenReports = 4096;

enum class FilmFormat { None = 0, Film35 = 10, Film16 = 11, Film35ThreePerf = 12 };

/// What the scan of the heading finds.
struct Layout {
    FilmFormat filmFormat = FilmFormat::None;
    int namesLine = -1;
    int firstDataLine = -1;
};

std::string_view lineText(const TextFile& file, unsigned i) {
    const std::string_view line = file.lineView(i);
    return line.substr(0, line.find('\0'));
}

Pieces piecesOf(std::string_view line, Tarn::SplitMode mode) {
    Pieces pieces;
    Tarn::splitIf(line, Tarn::IsMatchingChar{'\t'}, pieces, mode);
    return pieces;
}

/// What stands behind the first tab, or the whole line where there is none.
std::string_view behindTab(std::string_view line, std::size_t longest) {
    const std::size_t tab = line.find('\t');
    return (tab == std::string_view::npos ? line : line.substr(tab + 1)).substr(0, longest);
}

FilmFormat filmFormatOf(std::string_view text) {
    std::string compact{text};
    std::erase(compact, ' ');
    if (compact == "16mm") {
        return FilmFormat::Film16;
    }
    return compact == "35mm,3perf" || compact == "35mm(3perf)" ? FilmFormat::Film35ThreePerf
                                                               : FilmFormat::Film35;
}

const char* filmLabelOf(FilmFormat format) {
    switch (format) {
    case FilmFormat::Film16:
        return "F16";
    case FilmFormat::Film35ThreePerf:
        return "F353";
    default:
        return "F35";
    }
}

Layout scanHeading(const TextFile& file) {
    Layout layout;
    for (unsigned i = 0; i < file.numLines(); ++i) {
        const std::string_view line = lineText(file, i);
        if (line.starts_with(filmFormatWord)) {
            layout.filmFormat = filmFormatOf(behindTab(line, longestFilmFormat));
        }
        if (layout.namesLine < 0 && line.starts_with(columnWord)) {
            layout.namesLine = static_cast<int>(i) + 1;
        }
        if (line.starts_with(dataWord)) {
            layout.firstDataLine = static_cast<int>(i) + 1;
            break;
        }
    }
    return layout;
}

/// A field that columns go to, and what it holds of the row at hand: a slice of the line, or of
/// what was joined.
struct Target {
    int field;
    std::size_t firstColumn;
    bool isShared = false; // by several columns
    std::string_view value{};
    std::string joined{};
    bool isJoined = false;

    /// Makes `joined` hold the value and no more; its text is copied the first time only.
    void keepValue() {
        if (isJoined) {
            const auto front = static_cast<std::size_t>(value.data() - joined.data());
            joined.resize(front + value.size());
            joined.erase(0, front);
        } else {
            joined = value;
            isJoined = true;
        }
    }
};

/// One import: the table, the log, and where the log's columns go.
class Import {
public:
    Import(oledb& table, ALE::Report& report) : table_{table}, report_{report} {}

    bool run(const LightweightString<wchar_t>& path) {
        const bool readable = file_.load(path, '\n', true);
        layout_ = scanHeading(file_);
        report_.refusal = readable ? refusal() : ALE::Report::Refusal::Unreadable;
        if (report_.refusal != ALE::Report::Refusal::None) {
            return false;
        }
        setParameters();
        mapColumns();
        findSharingColumns();
        findFilmLabel();
        recent_ = RecentValues{targets_.size()};
        for (auto i = static_cast<unsigned>(layout_.firstDataLine); i < file_.numLines(); ++i) {
            if (i % linesBetweenReports == 0) {
                SystemWatchdog::reportProgress(i, file_.numLines());
            }
            addRow(i);
        }
        SystemWatchdog::reportProgress(file_.numLines(), file_.numLines());
        return table_.get_num_records() != 0;
    }

private:
    [[nodiscard]] ALE::Report::Refusal refusal() const {
        if (layout_.firstDataLine < 0) {
            return ALE::Report::Refusal::NoDataLine;
        }
        return layout_.namesLine < 0 ? ALE::Report::Refusal::NoColumnLine
                                     : ALE::Report::Refusal::None;
    }

    void setParameters() {
        for (int i = 1; i < layout_.namesLine; ++i) {
            const Pieces pieces =
                piecesOf(lineText(file_, static_cast<unsigned>(i)), Tarn::eSplitMerging);
            if (pieces.size() == 2) {
                table_.set_param_val(LightweightString<char>{pieces[0]}.c_str(),
                                     LightweightString<char>{pieces[1]}.c_str());
            }
        }
    }

    void mapColumns() {
        const std::string_view names = lineText(file_, static_cast<unsigned>(layout_.namesLine));
        if (isEssentiallyEmpty(names)) {
            report_.refusal = ALE::Report::Refusal::NoColumnNames;
        }
        for (const std::string_view name : piecesOf(names, Tarn::eSplitMerging)) {
            const LightweightString<char> column{name};
            const int field = ALE::findODBColumnFor(table_, column);
            if (name == keyNumberColumn) {
                keyNumberIndex_ = columns_.size();
            }
            columns_.append(targetOf(field));
            noteColumn(column, field);
        }
        keepSharedFieldsOnly();
    }

    /// The place where the values for a field are joined; -1 for no field.
    int targetOf(int field) {
        if (field < 0) {
            return -1;
        }
        const auto known =
            std::find_if(targets_.begin(), targets_.end(),
                         [field](const auto& entry) { return entry.field == field; });
        const auto index = known - targets_.begin();
        if (known == targets_.end()) {
            targets_.push_back({field, columns_.size()});
        } else {
            known->isShared = true;
        }
        return static_cast<int>(index);
    }

    void findSharingColumns() {
        for (unsigned i = 0; i < columns_.size(); ++i) {
            if (columns_[i] >= 0 && targets_[static_cast<std::size_t>(columns_[i])].isShared) {
                sharingColumns_.push_back(i);
            }
        }
    }

    void noteColumn(const LightweightString<char>& column, int field) {
        report_.columns.push_back(column);
        if (field < 0) {
            report_.columnsWithoutField.push_back(column);
            return;
        }
        const LightweightString<char> name{table_.get_fieldname(static_cast<unsigned>(field))};
        auto& shared = report_.sharedFields;
        const auto known = std::find_if(shared.begin(), shared.end(),
                                        [&name](const auto& entry) { return entry.field == name; });
        if (known == shared.end()) {
            shared.push_back({name, {column}});
        } else {
            known->columns.push_back(column);
        }
    }

    void keepSharedFieldsOnly() {
        std::erase_if(report_.sharedFields,
                      [](const auto& entry) { return entry.columns.size() < 2; });
    }

    void addRow(unsigned lineIndex) {
        const std::string_view line = lineText(file_, lineIndex);
        if (isEssentiallyEmpty(line)) {
            return;
        }
        pieces_.clear();
        Tarn::splitIf(line, Tarn::IsMatchingChar{'\t'}, pieces_, Tarn::eSplitPlain);
        if (pieces_.size() > columns_.size()) {
            noteSkipped(lineIndex, ALE::Report::SkipReason::TooManyFields);
            return;
        }
        const int added = table_.add_records(1);
        if (added < 0) {
            noteSkipped(lineIndex, ALE::Report::SkipReason::TableRefused);
            return;
        }
        ++report_.recordsAdded;
        report_.rowLines.push_back(lineIndex + 1);
        for (std::size_t i : sharingColumns_) {
            if (i < pieces_.size()) {
                joinPiece(i);
            }
        }
        storeValues(static_cast<unsigned>(added));
    }

    void noteSkipped(unsigned lineIndex, ALE::Report::SkipReason reason) {
        report_.skippedLines.push_back(
            {lineIndex + 1, reason, static_cast<unsigned>(pieces_.size())});
    }

    /// Joined here and stored once: a log may send any number of columns to one field.
    void joinPiece(std::size_t i) {
        Target& target = targets_[static_cast<std::size_t>(columns_[static_cast<unsigned>(i)])];
        std::string_view value = pieces_[i];
        if (target.value.empty()) {
            target.isJoined = false;
        } else {
            target.keepValue();
            value = target.joined.append(", ").append(value);
        }
        target.value = cleaned(value, i, target);
    }

    /// A value of column i as tables store it.
    std::string_view cleaned(std::string_view value, std::size_t i, Target& target) const {
        value = value.substr(0, value.find_last_not_of(' ') + 1);
        if (i == keyNumberIndex_ && !isEssentiallyEmpty(value) && value != unknownKeyNumber) {
            target.joined = normalisedKeyNumber(value);
            target.isJoined = true;
            value = target.joined;
        }
        return Tarn::trimmedFront(value);
    }

    /// The value of the row for a field, which is then ready for the next row.
    std::string_view taken(Target& target) const {
        if (!target.isShared) {
            return cleaned(pieces_[target.firstColumn], target.firstColumn, target);
        }
        target.isJoined = false;
        return std::exchange(target.value, {});
    }

    void storeValues(unsigned row) {
        dbrecord* const record = recordOf(row);
        for (std::size_t i = 0; i < targets_.size(); ++i) {
            Target& target = targets_[i];
            if (target.firstColumn >= pieces_.size()) {
                break;
            }
            const std::string_view value = taken(target);
            store(record, row, target.field,
                  value.empty() ? LightweightString<char>{} : recent_.stringOf(i, value));
        }
        if (layout_.filmFormat != FilmFormat::None) {
            store(record, row, filmLabelField_, filmLabel_);
        }
    }

    /// The record to write to; null for a table of a host's own, which may write in its own way.
    [[nodiscard]] dbrecord* recordOf(unsigned row) const {
        return isPlain(table_) ? table_.get_record(row) : nullptr;
    }

    void store(dbrecord* record, unsigned row, int field, LightweightString<char> value) {
        if (record) {
            record->set_string(field, std::move(value));
        } else {
            table_.set_field(row, static_cast<unsigned>(field), value.c_str());
        }
    }

    void findFilmLabel() {
        filmLabelField_ = table_.get_fieldnum(filmLabelField);
        filmLabel_ = filmLabelOf(layout_.filmFormat);
    }

    oledb& table_;
    ALE::Report& report_;
    TextFile file_;
    Layout layout_;
    Vector<int> columns_; // for each its target, or -1
    std::vector<Target> targets_;
    std::vector<std::size_t> sharingColumns_; // those whose field other columns go to as well
    std::size_t keyNumberIndex_ = std::string_view::npos;
    int filmLabelField_ = -1;
    LightweightString<char> filmLabel_;
    RecentValues recent_{0}; // of each target
    Pieces pieces_;
};

} // namespace

bool ALE::fillODB(oledb& table, const LightweightString<wchar_t>& path) {
    Report report;
    return fillODB(table, path, report);
}

bool ALE::fillODB(oledb& table, const LightweightString<wchar_t>& path, Report& report) {
    report = {};
    return Import{table, report}.run(path);
}

int ALE::findODBColumnFor(oledb& table, LightweightString<char> name) {
    return table.get_fieldnum(fieldNameForAleColumn(name).c_str());
}
