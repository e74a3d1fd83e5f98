// Export of views as comma-separated text.
//
//   file      = names separators { row }     every line ends in CR LF
//   names     = name { "," name }            the first letter of each is a capital
//   separators = { "," }                     one fewer than names
//   row       = value { "," value }
//   value     = text | '"' text '"'          quoted where the stored value has a comma
//
// Nothing is escaped. Whether a value is quoted is decided before it is converted, so converted
// forms must hold no comma.

#include "ole/interchange/CSV.h"

#include "misc/CurrentProject.h"
#include "misc/date_def.h"
#include "misc/time_def.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/RowsAhead.h"
#include "tarn/Ascii.h"
#include "tarn/byteWords.h"
#include "tarn/LineBuffer.h"
#include "tarn/numbers.h"
#include "tarn/TextFile.h"

#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr auto lineEnds = TextFile::eEOLStyleCRLF;
constexpr int fullDateForm = 0;
constexpr Tarn::CurrentProject::Revision currentRevision = 0;

std::string_view textOf(const char* text) {
    return text ? std::string_view{text} : std::string_view{};
}

/// The open project's way of counting, asked for each time: it may change between two values.
TCInf projectTimecode() {
    const auto rate = Tarn::CurrentProject::getFrameRate(currentRevision);
    return {rate.numerator, rate.denominator, Tarn::CurrentProject::getUseDropFrameTimecode()};
}

std::uint64_t holdsComma(std::uint64_t word) {
    return Tarn::hasByte(word, ',');
}

/// The comma is looked for while the text is copied; the few values that hold one are moved up.
void appendText(Tarn::LineBuffer& line, std::string_view separator, std::string_view text) {
    char* to = line.roomFor(separator.size() + text.size() + 2);
    for (const char c : separator) {
        *to++ = c;
    }
    if (Tarn::copyMarking(to, text, holdsComma) == 0) {
        line.takeUpTo(to + text.size());
        return;
    }
    std::memmove(to + 1, to, text.size());
    to[0] = '"';
    to[text.size() + 1] = '"';
    line.takeUpTo(to + text.size() + 2);
}

void appendConverted(Tarn::LineBuffer& line, std::string_view separator,
                     const LightweightString<char>& value, DBFieldTypes::eType type) {
    line.append(separator);
    const std::string_view quote = value.find(',') == std::string_view::npos ? "" : "\"";
    line.append(quote);
    line.append(CSV::convertField(value, type).view());
    line.append(quote);
}

void appendValue(Tarn::LineBuffer& line, std::string_view separator,
                 const LightweightString<char>& value, DBFieldTypes::eType type) {
    if (type == DBFieldTypes::DOUBLE || type == DBFieldTypes::DOS_DATE) {
        appendConverted(line, separator, value, type);
    } else {
        appendText(line, separator, value.view());
    }
}

} // namespace

CSV::CSV(const ODBView& view) : FieldMap{view} {}

CSV::CSV(const ODBView& /*view*/, const FieldMap& map) : FieldMap{map} {}

bool CSV::writeTo(const LightweightString<wchar_t>& path) const {
    TextFile file{path, false};
    if (!writeHeader(file)) {
        return false;
    }
    file.stream({}, lineEnds);
    const std::vector<Column> visible = columns();
    std::vector<int> fields;
    fields.reserve(visible.size());
    for (const Column& column : visible) {
        fields.push_back(column.field);
    }
    const unsigned rows = sourceDb()->get_num_records();
    RowsAhead ahead{isPlain(*sourceDb()) ? rows : 0, fields, [this](std::size_t row) {
                        return sourceDb()->get_record(static_cast<unsigned>(row));
                    }};
    Tarn::LineBuffer line;
    for (unsigned i = 0; i < rows; ++i) {
        ahead.reach(i);
        makeLine(line, visible, i);
        file.appendLine(line.view());
    }
    file.save({}, lineEnds);
    return true;
}

bool CSV::writeHeader(TextFile& file) const {
    std::string names;
    std::string separators;
    bool named = false;
    for (const Column& column : columns()) {
        std::string name{textOf(sourceDb()->get_fieldname(static_cast<unsigned>(column.field)))};
        if (!name.empty()) {
            name[0] = Tarn::toUpper(name[0]);
            named = true;
        }
        names += name + ',';
        separators += ',';
    }
    if (!named) {
        return false;
    }
    names.pop_back();
    separators.pop_back();
    file.appendLine(names);
    file.appendLine(separators);
    return true;
}

void CSV::writeRecord(TextFile& file, unsigned record) const {
    Tarn::LineBuffer line;
    makeLine(line, columns(), record);
    file.appendLine(line.view());
}

LightweightString<char> CSV::convertField(LightweightString<char> value, DBFieldTypes::eType type) {
    if (type == DBFieldTypes::DOUBLE) {
        const double seconds = Tarn::parseDouble(value.c_str());
        return time_def{seconds, projectTimecode()}.get_punctuated_str();
    }
    if (type == DBFieldTypes::DOS_DATE) {
        return date_def{value.c_str()}.get_all(fullDateForm);
    }
    return value;
}

/// Looks every name up once; the export of a long view would look it up for every value otherwise.
std::vector<CSV::Column> CSV::columns() const {
    std::vector<Column> visible;
    for (int i = 0; sourceDb() && i < numVisible(); ++i) {
        const int field = getVisibleFieldIndex(i);
        visible.push_back({field, sourceDb()->get_fieldtype(static_cast<unsigned>(field))});
    }
    return visible;
}

/// The record is looked up once for all its values, unless the view is a host's own, which may have
/// values of its own.
void CSV::makeLine(Tarn::LineBuffer& line, const std::vector<Column>& columns, unsigned row) const {
    line.clear();
    const ODBViewRep* const view = sourceDb().rep();
    const bool plain = !view || isPlain(*view);
    const dbrecord* const record = view && plain ? view->get_record(row) : nullptr;
    std::string_view separator;
    for (const Column& column : columns) {
        if (record) {
            appendValue(line, separator,
                        record->getField(static_cast<unsigned short>(column.field)), column.type);
        } else {
            appendValue(line, separator, plain ? nullptr : view->get_field(row, column.field),
                        column.type);
        }
        separator = ",";
    }
}
