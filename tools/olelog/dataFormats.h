#pragma once

#include <cstddef>
#include <vector>

class ODBBase;
class Output;

/// What spreadsheets want of CSV.
struct CsvStyle {
    bool mark = false;          ///< begins with a byte order mark
    bool guardFormulas = false; ///< an apostrophe stands before what looks like a formula
};

/// Prints columns of a table or view as plain RFC 4180: a line of field names, lines end in CR LF,
/// values as bytes. Returns how many names and values got an apostrophe.
std::size_t printCsv(ODBBase& table, const std::vector<unsigned>& columns, Output& out,
                     const CsvStyle& style = {});

/// Prints columns of a table or view as an array of objects, one a line, the values as texts. Bytes
/// that are no UTF-8 become U+FFFD; of columns with one name the later ones get a number. Returns
/// how many texts were changed so.
std::size_t printJson(ODBBase& table, const std::vector<unsigned>& columns, Output& out);
