#pragma once

#include <optional>

class oledb;

/// The column in which a table file keeps tags, added where there is none; nothing, and a message,
/// where the file has no room for it.
std::optional<unsigned> tagColumn(oledb& table);
