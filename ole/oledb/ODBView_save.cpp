// Views as table files: the view's parameters, its table's columns, the records it shows.

#include "misc/diagnostics.h"
#include "ole/oledb/ODBView.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/rowText.h"
#include "tarn/StringFunctions.h"
#include "tarn/TextFile.h"

namespace {

constexpr auto lineEnds = TextFile::eEOLStyleCRLF;

} // namespace

void ODBViewRep::writeHeading(TextFile& file) const {
    for (std::size_t i = 0; i < params.size(); ++i) {
        file.appendLine(parameterLine(params[i].first.view(), params[i].second.view()));
    }
    db->save_column_header(file, false);
}

int ODBViewRep::saveAsText(LightweightString<wchar_t> name, bool noRecords) {
    if (!source() || !table() || name.empty()) {
        return 0;
    }
    TextFile file;
    file.stream(name, lineEnds);
    writeHeading(file);
    const int tagCol = get_fieldnum("Tag");
    int reached = 0;
    for (; !noRecords && reached < index.held(); ++reached) {
        const dbrecord* const record = (*this)[reached];
        if (!record) {
            break;
        }
        dbrecord written{*record};
        written.set_field(tagCol, tag(reached) ? "1" : "0", true);
        if (written.write(file) == 0) {
            break;
        }
    }
    return file.save(name, lineEnds) ? reached : 0;
}

int ODBViewRep::saveAsText(const char* name, bool noRecords) {
    return saveAsText(Tarn::WStringFromAscii(name), noRecords);
}

int ODBViewRep::saveOnlyTagged(LightweightString<wchar_t> name) {
    if (!source() || !table() || name.empty()) {
        return 0;
    }
    Tarn::reportFailedCheck("false", "ole/oledb/ODBView line 1043");
    TextFile file;
    file.stream(name, lineEnds);
    writeHeading(file);
    int reached = 0;
    for (; reached < index.held(); ++reached) {
        const dbrecord* const record = (*this)[reached];
        if (!record || (record->tag() != 0 && record->write(file) == 0)) {
            break;
        }
    }
    return file.save(name, lineEnds) ? reached : 0;
}

int ODBViewRep::saveOnlyTagged(const char* name) {
    return saveOnlyTagged(Tarn::WStringFromAscii(name));
}
