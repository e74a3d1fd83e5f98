#pragma once

#include <cstddef>

class oledb;
class Output;

/// Prints a table as plain RFC 4180: a line of field names, lines end in CR LF, values as bytes.
void printCsv(oledb& table, Output& out);

/// Prints a table as an array of objects, one a line, the values as texts. Bytes that are no UTF-8
/// become U+FFFD; of columns with one name the later ones get a number. Returns how many
/// texts were changed so.
std::size_t printJson(oledb& table, Output& out);
