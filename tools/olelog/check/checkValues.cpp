// Every value as it stands in the log against the one that comes back from the table's file. What
// differs is a finding, whatever made it so.

#include "check/checks.h"
#include "importedValues.h"
#include "messages.h"
#include "shownText.h"
#include "tableLosses.h"
#include "tableValues.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <map>

namespace {

class ValueCheck {
public:
    ValueCheck(const CheckedLog& log, FindingList& findings) : log_{log}, findings_{findings} {
        const auto& titles = log.head().columns;
        for (std::size_t i = 0; i < titles.size(); ++i) {
            if (const int field = log.fieldOf(titles[i]); field >= 0) {
                columnsOf_[static_cast<unsigned>(field)].push_back(i);
            }
        }
    }

    void run() {
        const auto& lines = log_.report().rowLines;
        for (unsigned row = 0; row < lines.size(); ++row) {
            line_ = log_.number(lines[row]);
            pieces_ = piecesOfRow(log_.text(lines[row]));
            for (const auto& [field, columns] : columnsOf_) {
                compare(row, field, columns);
            }
        }
    }

private:
    [[nodiscard]] const std::string& title(std::size_t column) const {
        return log_.head().columns[column];
    }

    void compare(unsigned row, unsigned field, const std::vector<std::size_t>& columns) {
        std::vector<std::size_t> given;
        for (const std::size_t column : columns) {
            if (column < pieces_.size()) {
                given.push_back(column);
            }
        }
        std::vector<std::size_t> filled = given;
        std::erase_if(filled, [this](std::size_t c) { return isEssentiallyEmpty(pieces_[c]); });
        const std::string_view value = valueOf(log_.kept(), row, field);
        if (filled.empty() || (filled.size() == 1 && value == pieces_[filled.front()])) {
            return;
        }
        if (filled.size() == 1 && value == Tarn::trimmed(pieces_[filled.front()])) {
            tellTrimmed(filled.front());
        } else if (given.size() > 1) {
            tellJoined(given, field, value);
        } else {
            tellChanged(filled.front(), value);
        }
    }

    void tellTrimmed(std::size_t column) {
        findings_.addToGroup(title(column), finding::trimmedValue, line_,
                             fmt::format("{}: blanks around {} are dropped", shown(title(column)),
                                         inQuotes(pieces_[column])),
                             {title(column)});
    }

    void tellJoined(const std::vector<std::size_t>& given, unsigned field, std::string_view value) {
        std::vector<std::string> titles;
        std::transform(given.begin(), given.end(), std::back_inserter(titles),
                       [this](std::size_t column) { return title(column); });
        const std::string into = log_.kept().get_fieldname(field);
        findings_.addToGroup(into, finding::joinedColumns, line_,
                             fmt::format("{} go to one field, {}, and become {}", listed(titles),
                                         into, inQuotes(value)),
                             titles);
    }

    void tellChanged(std::size_t column, std::string_view value) {
        const std::string_view piece = pieces_[column];
        const auto imported = importedValue(log_.head(), title(column), piece, value);
        if (!imported) {
            findings_.add(finding::changedValue, line_,
                          fmt::format("{}: {}", shown(title(column)), howItChanges(piece, value)),
                          {title(column)});
            return;
        }
        const bool isLabel =
            log_.kept().get_fieldnum("film label_std") == log_.fieldOf(title(column));
        const FindingKind& lost = isLabel ? finding::changedValue : finding::keyNumberCut;
        findings_.addToGroup(title(column), imported->kept ? finding::keyNumber : lost, line_,
                             imported->what, {title(column)});
    }

    const CheckedLog& log_;
    FindingList& findings_;
    std::map<unsigned, std::vector<std::size_t>> columnsOf_;
    unsigned line_ = 0;
    std::vector<std::string_view> pieces_;
};

} // namespace

void checkValues(const CheckedLog& log, FindingList& findings) {
    ValueCheck{log, findings}.run();
}
