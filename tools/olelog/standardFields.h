#pragma once

#include "ole/oledb/DBFieldTypes.h"

#include <vector>

/// The columns of a table that an import makes: the editor's own, in its order, and three more that
/// logs fill.
std::vector<DBFieldDesc> standardFields();
