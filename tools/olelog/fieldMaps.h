#pragma once

#include <optional>
#include <vector>

class FieldMap;
class ODBView;
class oledb;

/// The columns that the table's own field map shows, in its order; nothing where it has none.
std::optional<std::vector<unsigned>> columnsOfStoredMap(oledb& table);

/// A map of these columns, all visible, over a view.
FieldMap mapOf(const ODBView& view, const std::vector<unsigned>& columns);

/// Puts the field map of these columns, and of hidden ones behind them, into the table's
/// parameters. False, saying why, where it would not be read back as these columns.
bool keepMap(oledb& table, const std::vector<unsigned>& shown, const std::vector<unsigned>& hidden);
