#pragma once

#include "files.h"
#include "ole/oledb/oledb.h"

#include <memory>
#include <string>

/// A table that was read from a file.
struct LoadedTable {
    std::unique_ptr<oledb> table; ///< null when nothing could be read
    bool whole = false;           ///< whether all of the file was read
    unsigned firstRowLine = 0;    ///< where the rows begin; 0 when they stand not one a line
};

/// Reads a table file. Says on standard error, with line numbers, what is wrong with it: why there
/// is no table, or what of the file is not in it.
LoadedTable loadTable(const InputFile& file);

/// Where a row stands in the file that it was loaded from, for messages: "day.odb:12".
std::string placeOf(const LoadedTable& loaded, const InputFile& file, unsigned row);

/// Whether a path leads to a file that holds something and is no table: a log, say, that was named
/// as the target by mistake.
bool isForeignFile(const std::string& path);

/// Whether a path leads to a table file.
bool isTableFile(const std::string& path);

/// How a table reads back from its file, told or not: for checks of a file just written.
std::unique_ptr<oledb> loadTableQuietly(const std::string& path);
