#pragma once

#include "ContainerTable.h"

#include <string>

/// A table in which the items of a container stand as rows.
struct ItemRows {
    std::string table;  ///< its file; "" for none
    std::string fields; ///< those to show; "" for Name, Scene and Shot, where the table has them
};

/// Puts fields of a table beside a container's items, as columns of the table in memory: those of
/// the first row with the item's cookie, empty where there is none. Says how many items have none.
/// Returns `exitFine`, or `exitFindings` where the table was read in part; where there is nothing
/// to put, says why and returns the exit code that is left.
int addItemFields(LoadedContainer& container, const ItemRows& asked);
