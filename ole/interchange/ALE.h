#pragma once

#include "ole/ole.h"
#include "tarn/LightweightString.h"

#include <string>
#include <vector>

class oledb;

/// Import of ALE logs: tab-separated text with a heading, a line of column names and data lines.
class OLE_API ALE {
public:
    /// What an import did, for callers who tell people.
    struct Report {
        /// What kept the log's data from being taken.
        enum class Refusal {
            None,          ///< the log was taken
            Unreadable,    ///< no such file, or it cannot be read
            NoDataLine,    ///< no line begins with "Data"
            NoColumnLine,  ///< no line before the data begins with "Column"
            NoColumnNames, ///< the line behind "Column" is blank, so no value has a name; the
                           ///< heading's parameters are set all the same, and a line of
                           ///< one value makes an empty row
        };
        /// Why a line was left out.
        enum class SkipReason {
            TooManyFields, ///< more values than there are column names
            TableRefused,  ///< the table takes no rows, being in show-tags-only mode
        };
        /// A data line that became no record.
        struct SkippedLine {
            unsigned line;     ///< from 1, as editors count
            SkipReason reason; ///< why
            unsigned fields;   ///< values on the line
        };
        /// A table field that more than one column goes to; its values were joined with ", ".
        struct SharedField {
            LightweightString<char> field;                ///< the table's name of it
            std::vector<LightweightString<char>> columns; ///< the log's, in order
        };

        Refusal refusal = Refusal::None;              ///< whether the log was taken at all
        unsigned recordsAdded = 0;                    ///< records, one a data line
        std::vector<SkippedLine> skippedLines;        ///< in the order of the log
        std::vector<LightweightString<char>> columns; ///< all column names, in order
        std::vector<LightweightString<char>> columnsWithoutField; ///< dropped, in order
        std::vector<SharedField> sharedFields; ///< in the order of their first columns
        std::vector<unsigned> rowLines; ///< for each added record, its line in the log, from 1
    };

    /// Adds a record for every data line of the log at `path`; the table's fields stay as they are.
    /// Heading lines become parameters. Every column goes to the field that the user's map file,
    /// the built-in names or its own name gives, or nowhere; key numbers are normalised to 15
    /// characters; the film format is written into "film label_std". Lines with more values than
    /// column names are left out. Returns whether the table holds any record afterwards; false,
    /// without a change, for a file that is no log. Linear in the log.
    static bool fillODB(oledb& table, const LightweightString<wchar_t>& path);
    /// The same, telling what was done.
    static bool fillODB(oledb& table, const LightweightString<wchar_t>& path, Report& report);

    /// The field of the table that a column of this name goes to, -1 for none. Names are told apart
    /// by case in the maps, not in the table. The user's map file is read at the first call in the
    /// process.
    static int findODBColumnFor(oledb& table, LightweightString<char> name);
};
