#pragma once

#include "RowOrigins.h"

#include <functional>
#include <string>
#include <string_view>

class oledb;
class Progress;

/// Why a row cannot be kept in a table file; empty where it can.
std::string whyUnsavable(oledb& table, unsigned number);

/// "a" comes back from a table file as "b", and why.
std::string howItChanges(std::string_view before, std::string_view after);

/// A parameter that is not the same in a table file.
struct ChangedParameter {
    std::string name;
    std::string what; ///< what becomes of it, for people
    bool onlyBlanks;  ///< it loses nothing but blanks around its name or value
};
using ParameterChange = std::function<void(const ChangedParameter& change)>;

/// Tells of each parameter that is not the same in the table that was loaded back.
void forChangedParameters(const oledb& saved, const oledb& loaded, const ParameterChange& tell);

/// Says which rows cannot be kept in a table file, and why; returns whether there are any.
bool tellUnsavableRows(oledb& table, const RowOrigins& origins);

/// Why a table that was loaded back has not the columns and rows of the one that was saved; empty
/// where it has.
std::string whyNotTheSame(oledb& saved, oledb& loaded);

/// Says which parameters and values came back changed; returns whether there are any.
bool tellChanges(oledb& saved, oledb& loaded, const RowOrigins& origins, Progress& progress);
