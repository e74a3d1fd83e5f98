#pragma once

#include "RowOrigins.h"

#include <string>

namespace CLI {
class App;
}
class oledb;
class SaveTarget;

struct SaveRules {
    bool strict = false; ///< what the format changes is an error, not a finding
    bool dryRun = false; ///< all is written and checked, elsewhere; the target is left alone
};

/// Takes the tag of one row from its column "Tag", as saving does of every row; false where the
/// value there is no tag.
bool takeTag(oledb& table, unsigned row, unsigned col);

/// Writes the table into a file; 0, or an error number. A table without rows cannot tell success
/// from failure here: that shows when it is loaded back.
int writeTable(oledb& table, const std::string& path);

/// Adds the option --strict to a command.
void addStrictOption(CLI::App& command, bool& strict);

/// Says that a file cannot be written and why. Returns the exit code.
int cannotWrite(const std::string& name, int error);

/// Says that nothing was written because of --strict. Returns the exit code.
int refuseLoss(const std::string& target);

/// Saves a table in a file and makes sure that it can be loaded again. Its column "Tag", where
/// there is one, holds its tags: a table keeps no others.
///
/// It is written beside the target, loaded back and compared. A table that would not come back
/// whole is not saved: the target stays as it was, and the reason is said. Single values that come
/// back changed are named, and the table is saved unless the rules are strict. An existing file
/// keeps its permissions.
///
/// Returns the tool's exit code.
int saveChecked(oledb& table, const SaveTarget& place, const RowOrigins& origins,
                const SaveRules& rules = {});

/// Whether a file could be saved there; says why not. For commands that only tell what they would
/// do.
bool canBeSaved(const std::string& target);
