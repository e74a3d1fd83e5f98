#pragma once

#include <string>

class CSV;
class oledb;
struct Selection;

/// Writes a selection in the CSV form of editors (docs/format-csv.md) over an existing, empty file,
/// at the frame rate that the table's parameter FPS tells. 0, or an error number.
int writeModuleCsv(oledb& table, const Selection& selection, const std::string& path);

/// Says what of a selection that form does not give back; returns whether there is any such thing.
bool tellCsvLosses(oledb& table, const Selection& selection);
