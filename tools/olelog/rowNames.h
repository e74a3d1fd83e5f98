#pragma once

#include <string>

class oledb;

/// What a person knows a row by, in quotes: its name, or else the first value that it has.
std::string calledBy(oledb& table, unsigned row);

/// "row 3, "31A-2b"": the row by its number, from 1, and what it is called.
std::string rowAndName(oledb& table, unsigned row);
