#pragma once

#include "extraColumns.h"
#include "takenLog.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

class oledb;

/// The columns of logs for which a table has no field, as columns of their own.
class LogColumns {
public:
    /// Adds a column to the table for each, as long as there is room.
    void addTo(oledb& table, const std::vector<OpenLog>& logs);
    /// The same for a new table of the standard columns. To make room, those of them that no log
    /// fills are left out, and that is said; `kept` are left in.
    void addToNew(std::unique_ptr<oledb>& table, const std::vector<OpenLog>& logs,
                  const std::set<std::string>& kept);

    /// Whether a column found no room, or got another name; says which did.
    [[nodiscard]] bool tellChanged() const;
    /// Titles of the log that have no column in the table.
    [[nodiscard]] std::vector<std::string> droppedOf(const ALE::Report& report) const;
    /// Fills the columns that the module does not find by the log's titles, as it fills others.
    void fill(const TakenLog& taken) const;

private:
    ExtraColumns extra_;
    std::set<std::string> emptyTitles_; // their fields were left out for want of values
};
