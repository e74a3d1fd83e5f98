#pragma once

#include "ole/ole.h"

/// @file
/// The message types of tables and views, interned when they are first asked for. To listen:
///
///     guard = table.registerInterest([](const NotifyMsg& msg) { ...; return 0; },
///     recordsDeletedType());

/// "recordsDeleted": the text holds the numbers of the deleted rows, each followed by a blank.
OLE_API int recordsDeletedType();
/// "recordsChanged": from a table with the changed cookies, as `WrappedData<CookieVec>`; from a
/// view without payload.
OLE_API int recordsChangedType();
