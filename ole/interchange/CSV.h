#pragma once

#include "ole/interchange/FieldMap.h"
#include "ole/ole.h"
#include "ole/oledb/DBFieldTypes.h"
#include "tarn/LightweightString.h"

#include <vector>

class TextFile;
namespace Tarn {
class LineBuffer;
}

/// Export of a view's rows as comma-separated text (docs/format-csv.md): the visible fields of a
/// field map, in its order, of the rows of its source view. The export is a field map itself, whose
/// entries can be changed before writing.
///
/// The format is deliberately simple: names begin with a capital, a second header line holds the
/// commas alone, a value with a comma stands between quotes, and **nothing else is quoted or
/// escaped**: quotes and line breaks in values pass through. Bytes are written as stored.
///
/// The view must not change while it is written.
class OLE_API CSV : public FieldMap {
public:
    /// Exports a view through its own field map, see `FieldMap::setSourceDb`.
    explicit CSV(const ODBView& view);
    /// Exports through a copy of a map. Deliberately the map's source view is exported, and `view`
    /// not looked at.
    CSV(const ODBView& view, const FieldMap& map);

    /// Writes the file, replacing an existing one whole or not at all. Returns whether there was
    /// anything to write: false, leaving the file alone, when no field is visible or only fields
    /// without a name. **True does not tell that the file was written**; a caller who must know
    /// uses `writeHeader`, `writeRecord` and `TextFile::save`. Linear in the rows.
    bool writeTo(const LightweightString<wchar_t>& path) const;
    /// Appends the two header lines; false, appending nothing, when there is nothing to write.
    bool writeHeader(TextFile& file) const;
    /// Appends the line of the view's row `record`. Where there is no such row all its texts count
    /// as empty: its values are then empty too, but for 00:00:00:00 in `DOUBLE` columns.
    void writeRecord(TextFile& file, unsigned record) const;
    /// A value as it is written. `DOUBLE`: seconds as a timecode at the open project's rate,
    /// 10:00:00:05; what is no number, so "" too, reads as 0; "" for the invalid time 1e99, for
    /// what is no number of seconds, and from 100 hours on. `DOS_DATE`: the full date and time, ""
    /// for none. Others as they are. Asks for the project's settings every time.
    [[nodiscard]] static LightweightString<char> convertField(LightweightString<char> value,
                                                              DBFieldTypes::eType type);

private:
    /// A visible field; number -1 where the view does not have it.
    struct Column {
        int field;
        DBFieldTypes::eType type;
    };
    [[nodiscard]] std::vector<Column> columns() const;
    void makeLine(Tarn::LineBuffer& line, const std::vector<Column>& columns, unsigned row) const;
};
