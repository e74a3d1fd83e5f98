#pragma once

#include "files.h"
#include "LogFile.h"
#include "ole/interchange/ALE.h"
#include "tarn/LightweightString.h"
#include "tarn/StringFunctions.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class oledb;

/// A log that can be imported.
struct OpenLog {
    InputFile file;
    LogHead head;
};

/// A log whose rows are in a table, behind those that were there before.
struct TakenLog {
    const OpenLog& log;
    oledb& table;
    unsigned firstRow = 0;
    ALE::Report report;
};

/// Values of a table's parameters, by their names in any case.
using ParametersByName = std::map<LightweightString<char>, std::string, StrCmpCI>;

/// Those that a log's heading will set.
ParametersByName parametersSetBy(const LogHead& head, const oledb& table);

using Cells = std::vector<std::string_view>;

/// Calls `use` with each row of the log: its number in the table, its line, and its cells by the
/// rules of the import, which are good until it returns. Reads the log once more.
void forRowsOf(const TakenLog& taken,
               const std::function<void(unsigned row, unsigned line, const Cells& cells)>& use);

/// What there was to be told of a log.
struct LogFindings {
    bool cut = false;      ///< something of the log is not in the table as it stands there
    bool repeated = false; ///< rows stand in the table twice
};

/// Says what became of a log: the summary, which is told in any case where columns were dropped,
/// and what a person should look at. `before` is what `parametersSetBy` gave, `others` what else
/// the table has rows of.
LogFindings tellOf(const TakenLog& taken, const std::string& summary, bool dropped,
                   const ParametersByName& before, std::string_view others);
