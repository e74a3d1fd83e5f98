#pragma once

#include <cstddef>
#include <vector>

class ODBBase;
class Output;

/// Prints columns of a table or view as plain RFC 4180: a line of field names, lines end in CR LF,
/// values as bytes.
void printCsv(ODBBase& table, const std::vector<unsigned>& columns, Output& out);

/// Prints columns of a table or view as an array of objects, one a line, the values as texts. Bytes
/// that are no UTF-8 become U+FFFD; of columns with one name the later ones get a number. Returns
/// how many texts were changed so.
std::size_t printJson(ODBBase& table, const std::vector<unsigned>& columns, Output& out);
