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
#include "tarn/Ascii.h"
#include "tarn/numbers.h"
#include "tarn/TextFile.h"

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

void appendValue(std::string& line, const char* value, DBFieldTypes::eType type) {
    const std::string_view text = textOf(value);
    const bool quoted = text.find(',') != std::string_view::npos;
    line += quoted ? "\"" : "";
    if (type == DBFieldTypes::DOUBLE || type == DBFieldTypes::DOS_DATE) {
        line += CSV::convertField(value, type).view();
    } else {
        line += text;
    }
    line += quoted ? "\"" : "";
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
    const unsigned rows = sourceDb()->get_num_records();
    std::string line;
    for (unsigned i = 0; i < rows; ++i) {
        makeLine(line, visible, i);
        file.appendLine(line);
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
    std::string line;
    makeLine(line, columns(), record);
    file.appendLine(line);
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

void CSV::makeLine(std::string& line, const std::vector<Column>& columns, unsigned record) const {
    line.clear();
    const char* separator = "";
    for (const Column& column : columns) {
        line += separator;
        appendValue(line, sourceDb()->get_field(record, column.field), column.type);
        separator = ",";
    }
}
