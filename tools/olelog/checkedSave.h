#pragma once

#include "RowOrigins.h"

#include <string>

class oledb;

/// Tables read from a file keep their tags in the column "Tag" alone, and saving writes that column
/// anew. Takes the tags from it; says which of its values are no tags and will be lost, and returns
/// whether there are none.
bool takeTagsFromColumn(oledb& table, const RowOrigins& origins);

/// The same for one row, without a word; false where its value is no tag.
bool takeTag(oledb& table, unsigned row, unsigned col);

/// Writes the table into a file; 0, or an error number. A table without rows cannot tell success
/// from failure here: that shows when it is loaded back.
int writeTable(oledb& table, const std::string& path);

/// Saves a table in a file (- for standard output) and makes sure that it can be loaded again.
///
/// It is written beside the target, loaded back and compared. A table that would not come back
/// whole is not saved: the target stays as it was, and the reason is said. Single values that come
/// back changed are named, and the table is saved. An existing file keeps its permissions.
///
/// Returns the tool's exit code.
int saveChecked(oledb& table, const std::string& target, const RowOrigins& origins);

/// Whether a file could be saved there; says why not. For commands that only tell what they would
/// do.
bool canBeSaved(const std::string& target);
