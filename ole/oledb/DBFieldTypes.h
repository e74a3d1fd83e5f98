#pragma once

#include "ole/ole.h"
#include "tarn/LightweightString.h"

#include <cstdint>
#include <utility>

/// The column types of tables. Every value is a text; the type tells its readers what the text
/// means.
struct DBFieldTypes {
    /// The value is a character code. Any other code is a legal type too: table files hold it as
    /// that single character.
    enum eType : std::int32_t {
        TEXT = 'a',        ///< free text
        TEXT_S = 'A',      ///< free text, a second kind that is treated the same
        TIMECODE = 't',    ///< punctuated timecode: 10:00:00:05, 10:00:00;05 under drop frame
        TIMECODE_S = 'T',  ///< timecode in database form: 10000005
        TIME_OF_DAY = 'D', ///< time of day
        DATE = 'd',        ///< date
        DOS_DATE = 'M',    ///< date and time: seconds since 1970 in decimal
        CHAR = 'c',        ///< a character
        NUMERIC = 'n',     ///< a number
        LONG = 'l',        ///< a whole number in decimal
        DOUBLE = 'f',      ///< seconds with eight decimals; 1e99 is the invalid time
        NONE = 0           ///< no type: ends a list of descriptors
    };
};

/// Name and type of a column. A list of descriptors ends at the first one of type `NONE`; a table
/// takes at most 256.
struct DBFieldDesc {
    /// Ends a list.
    DBFieldDesc() = default;
    /// A column; the name is shared.
    DBFieldDesc(LightweightString<char> fieldName, DBFieldTypes::eType fieldType)
        : name{std::move(fieldName)}, type{fieldType} {}

    LightweightString<char> name;                  ///< a null string counts as ""
    DBFieldTypes::eType type = DBFieldTypes::NONE; ///< `NONE` ends a list
};

/// The type that a type word names, ignoring case: "text", "text_s", "timecode", "timecode_s",
/// "time_of_day", "date", "dos_date", "char", "numeric", "long", "double". Any other word of one
/// character is the code itself (bytes above 127 give negative codes); other words, and null, give
/// `NONE`.
OLE_API DBFieldTypes::eType oledb_string_to_fieldtype(const char* word);

/// The word that a table file holds for a type: one of the above, or the type's single character. A
/// `CHAR` column has no word on output: it is written as "c".
OLE_API LightweightString<char> oledb_fieldtype_to_string(DBFieldTypes::eType type);
