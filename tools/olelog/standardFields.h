#pragma once

#include "ole/oledb/DBFieldTypes.h"

#include <memory>
#include <vector>

class oledb;

/// The columns of a table that an import makes: the editor's own, in its order, and three more that
/// logs fill.
std::vector<DBFieldDesc> standardFields();

/// An empty table of these columns.
std::unique_ptr<oledb> tableWith(std::vector<DBFieldDesc> fields);
