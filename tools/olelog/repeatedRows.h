#pragma once

#include <vector>

class oledb;

/// The rows of `added`, from `first` on, whose values all stand in one of the first `end` rows of
/// `table` already, the cookie and the tag aside. Both have the same columns. A row without values
/// repeats nothing.
std::vector<unsigned> repeatedRows(const oledb& table, unsigned end, const oledb& added,
                                   unsigned first);
