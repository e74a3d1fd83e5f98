#pragma once

#include "check/FindingList.h"
#include "check/MendedLog.h"
#include "files.h"

#include <optional>
#include <string>

/// All that was found out about a log.
struct LogVerdict {
    std::string name;
    bool taken = false; ///< whether an import takes the log as it is
    unsigned rows = 0;  ///< rows that an import would make, of the log as it is
    FindingList findings;
    MendedLog mended; ///< the log as an import takes it whole
};

/// What is left to be found in a mended log, by its own line numbers; nothing where it cannot be
/// checked, as it can no more be taken.
std::optional<FindingList> findingsLeft(const MendedLog& mended);

/// Checks a log. Where an import refuses it, it is checked further as if it had been made readable.
/// Bytes that are no UTF-8 are mended by `encoding`. Says why and gives nothing where the log
/// cannot be read, or there is no room for the table that is tried.
std::optional<LogVerdict> checkLog(const InputFile& log, const std::string& encoding);
