#pragma once

// The message types of tables and views, interned when they are first asked for.

/// "recordsDeleted": the text holds the numbers of the deleted rows, each followed by a blank.
int recordsDeletedType();
/// "recordsChanged": from a table with the changed cookies, from a view without payload.
int recordsChangedType();
