#pragma once

#include "RowOrigins.h"

#include <string>

class oledb;

/// Says which rows cannot be kept in a table file, and why; returns whether there are any.
bool tellUnsavableRows(const oledb& table, const RowOrigins& origins);

/// Why a table that was loaded back has not the columns and rows of the one that was saved; empty
/// where it has.
std::string whyNotTheSame(oledb& saved, oledb& loaded);

/// Says which parameters and values came back changed; returns whether there are any.
bool tellChanges(oledb& saved, oledb& loaded, const RowOrigins& origins);
