#pragma once

// The workload as a loaded table and as a loaded database.

#include "Sqlite.h"
#include "Workload.h"

#include "ole/oledb/oledb.h"

#include <memory>
#include <string_view>

namespace bench {

/// A table of its own, freshly loaded.
std::unique_ptr<oledb> freshTable(unsigned rows, Identifier identifier = Identifier::InkNumber);

/// A table and a database that benchmarks of the same size share; good until one of another size or
/// kind is asked for. Who changes the order of rows restores it.
oledb& sharedTable(unsigned rows, Identifier identifier = Identifier::InkNumber);
Sqlite& sharedDatabase(unsigned rows, Identifier identifier = Identifier::InkNumber);

/// A path of the platform.
LightweightString<wchar_t> pathOf(const std::string& path);

/// The rows from which a step counts as done where only "many" is known of its outcome.
inline bool someOf(unsigned rows, long long found) {
    return found > 0 && found <= rows;
}

} // namespace bench
