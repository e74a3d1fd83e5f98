#pragma once

#include "files.h"
#include "ole/oledb/oledb.h"

#include <memory>

/// A table that was read from a file.
struct LoadedTable {
    std::unique_ptr<oledb> table; ///< null when nothing could be read
    bool whole = false;           ///< whether all of the file was read
};

/// Reads a table file. Says on standard error, with line numbers, what is wrong with it: why there
/// is no table, or what of the file is not in it.
LoadedTable loadTable(const InputFile& file);

/// Whether a path leads to a file that holds something and is no table: a log, say, that was named
/// as the target by mistake.
bool isForeignFile(const std::string& path);

/// How a table reads back from its file, told or not: for checks of a file just written.
std::unique_ptr<oledb> loadTableQuietly(const std::string& path);
