#pragma once

#include "files.h"
#include "ole/oledb/oledb.h"
#include "tarn/CookieSet.h"

#include <memory>
#include <string>
#include <string_view>

/// A container that was read from a file.
struct LoadedContainer {
    std::unique_ptr<oledb> table; ///< null when the file is no container
    bool isPlainTable = false;    ///< whether it is none, but a table
    unsigned cookieCol = 0;
    CookieSet items;    ///< those whose cookies can be read, in order
    bool whole = false; ///< whether all of the file was read, and every item's cookie
};

/// Reads a container as the module does: every item's cookie begins with the letter of its kind.
/// Says on standard error what is wrong, with line numbers.
LoadedContainer loadContainer(const InputFile& file);

/// A container's name for messages.
std::string shownName(const std::string& container);

/// Adds an item behind the others, its cookie in the long form that containers hold.
void appendItem(oledb& table, unsigned cookieCol, const Cookie& cookie);

/// Whether a table is a container: it has a column "Cookie", and a parameter that tells its name or
/// permanence. Any table of logs has the column.
bool isContainer(const oledb& table);

/// The exit code where there is no container: wrong usage where a plain table was named.
int exitCodeOfNone(const LoadedContainer& none);

/// Whether a text is a cookie of kind 'I', which stands for no item.
bool standsForNoItem(std::string text);

/// Whether a file lies where saving this container would have put the new one first.
bool hasLeftOver(const std::string& container);
/// Names the file that an interrupted save left beside a container, and how to restore it, where
/// there is one.
void tellLeftOver(const std::string& container);
