#pragma once

#include "ole/ole.h"

/// @file
/// Comparison of rows. The keys belong to the table that was prepared last (`sortPrepare`), in the
/// whole process: one sort at a time. Each function takes the addresses of two `dbrecord*`, as
/// `qsort` passes them, and returns negative, zero or positive. None allocates.

/// The key list of the table prepared last: column numbers up to the first negative one. Null
/// before the first `sortPrepare`; it dangles when that table, or the caller's list, has gone.
extern OLE_API int* cmp_fields;
/// Comparisons made since the last `sortPrepare`; goes round behind the largest number.
extern OLE_API int comco;

/// Ascending. Blank rows come last, then rows with an empty key; leading blanks do not count. Two
/// rows whose key is empty compare equal whatever further keys hold. The last timecode key ignores
/// the mark before the frames, and deliberately decides alone: keys behind it are not asked, also
/// where it finds two rows equal. Other keys follow the table's sort offset or the natural order of
/// texts.
OLE_API int dbr_cmp(const void* a, const void* b);
/// Descending: the stored texts ignoring case, reversed, and none of the rules of `dbr_cmp`.
OLE_API int dbr_backcmp(const void* a, const void* b);
/// Ascending, for other modules: blank rows first, then rows with an empty key; leading white space
/// of the C locale in force does not count; otherwise ignoring case. Not counted in `comco`.
OLE_API int dbr_cmp_simple(const void* a, const void* b);
