#pragma once

#include "ole/oledb/oledb.h"

#include <vector>

/// What a table's query demands of a row, worked out once for many rows. Table and query must stay
/// as they are meanwhile.
class PreparedQuery {
public:
    explicit PreparedQuery(const oledb& table);
    PreparedQuery(const PreparedQuery&) = delete;
    PreparedQuery& operator=(const PreparedQuery&) = delete;
    ~PreparedQuery();

    /// Whether a row matches, as `oledb::match_record` tells; true without a query.
    [[nodiscard]] bool matches(const dbrecord& record) const;
    /// The columns that are looked at.
    [[nodiscard]] const std::vector<int>& columns() const noexcept { return columns_; }

private:
    std::vector<oledb::QueryTerm> terms_;
    std::vector<int> columns_;
};
