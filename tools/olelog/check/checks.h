#pragma once

#include "check/CheckedLog.h"
#include "check/FindingList.h"

#include <string_view>

// What is looked for in a log, one idea a function.

/// The bytes of the file: line ends, encoding, byte order mark, zero bytes.
void checkBytes(std::string_view bytes, FindingList& findings);
/// The heading: lines that are not taken, misleading words, parameters that a table does not keep.
void checkHeading(const CheckedLog& log, FindingList& findings);
/// The column titles: empty, repeated, without a field.
void checkTitles(const CheckedLog& log, FindingList& findings);
/// The rows: too many or too few values, an empty first cell, rows that no table file holds.
void checkRows(const CheckedLog& log, FindingList& findings);
/// Every value, against what a table file gives back.
void checkValues(const CheckedLog& log, FindingList& findings);
/// Start and End: their form, their order, takes that overlap on one tape.
void checkTimecodes(const CheckedLog& log, FindingList& findings);
