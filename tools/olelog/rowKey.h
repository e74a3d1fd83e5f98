#pragma once

#include <string>
#include <vector>

class ODBBase;

/// A row's values in some columns as one text that is the same for rows that are equal there,
/// ignoring case; empty where all those values are.
std::string rowKey(const ODBBase& table, unsigned row, const std::vector<unsigned>& columns);
