#pragma once

class oledb;

/// Gives every row without an identifier a new one, in the column Cookie, which is added where
/// there is none. Returns how many rows got one; -1 where a table file has no room for the column.
int identifyRows(oledb& table);
