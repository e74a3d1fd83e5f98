#pragma once

#include "check/LogText.h"
#include "files.h"
#include "LogFile.h"
#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A log that can be taken, the table that an import makes of it, and how that table comes back
/// from its file.
class CheckedLog {
public:
    /// Imports the log in `file`, whose lines these are.
    CheckedLog(const InputFile& file, std::vector<LogLine> lines);

    [[nodiscard]] const LogHead& head() const { return head_; }
    [[nodiscard]] const ALE::Report& report() const { return report_; }
    /// The table as imported.
    [[nodiscard]] oledb& imported() const { return *imported_; }
    /// The table as it comes back from its file; the imported one, where no file can hold it.
    [[nodiscard]] oledb& kept() const { return kept_ ? *kept_ : *imported_; }
    /// 0, or the number of the error that kept the table from being written at all.
    [[nodiscard]] int error() const { return error_; }
    /// Why no file can hold the table, where that is no matter of single rows.
    [[nodiscard]] const std::string& whyNotKept() const { return whyNotKept_; }

    [[nodiscard]] unsigned numLines() const { return static_cast<unsigned>(lines_.size()); }
    /// A line as it stands, by its number in the log that was taken, from 1.
    [[nodiscard]] std::string_view text(unsigned line) const { return lines_[line - 1].text; }
    /// Its number in the file that the person has.
    [[nodiscard]] unsigned number(unsigned line) const {
        return line - 1 < lines_.size() ? lines_[line - 1].number : line;
    }
    /// Number in the file of the names.
    [[nodiscard]] unsigned namesNumber() const { return number(head_.namesLine); }
    /// The field that a title goes to, -1 for none.
    [[nodiscard]] int fieldOf(const std::string& title) const {
        return ALE::findODBColumnFor(*imported_, title.c_str());
    }

private:
    void saveAndLoad();

    std::vector<LogLine> lines_;
    LogHead head_;
    ALE::Report report_;
    std::unique_ptr<oledb> imported_;
    std::unique_ptr<oledb> kept_;
    std::string whyNotKept_;
    int error_ = 0;
};
