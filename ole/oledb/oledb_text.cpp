// The table file: one text format for tables, views and container files.
//
//   file    = { parameter } header { row }
//   parameter = quote name ":" value quote          the first is "OLEDB:Rev 1"
//   header  = quote "OLEDB" quote; widths; types; names     one line each, one field a column
//   row     = one field a column, see dbrecord_text.cpp
//
// Lines end in CR LF. A blank line ends the rows. Parameters and names are written as they stand:
// their quotes are not doubled.

#include "misc/diagnostics.h"
#include "misc/SystemWatchdog.h"
#include "ole/oledb/oledb.h"
#include "ole/oledb/plainTypes.h"
#include "ole/oledb/RecentValues.h"
#include "ole/oledb/rowText.h"
#include "tarn/numbers.h"
#include "tarn/TextFile.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view headerWord = "OLEDB";
constexpr std::string_view revisionPrefix = "OLEDB:";
constexpr unsigned short headingFields = 256;
constexpr unsigned maxFileFields = 255;
constexpr auto lineEnds = TextFile::eEOLStyleCRLF;
constexpr int headerError = 3;
constexpr int typesLine = 3;
constexpr int namesLine = 4;
constexpr unsigned rowsBetweenReports = 4096;

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return compareIgnoringCase(text, prefix, prefix.size()) == 0;
}

std::string_view firstField(const dbrecord& row) {
    return row.getField(0).view();
}

void appendSeparator(Tarn::LineBuffer& line) {
    if (!line.view().empty()) {
        line.append(',');
    }
}

void appendQuotedRaw(Tarn::LineBuffer& line, std::string_view text) {
    appendSeparator(line);
    line.append('"');
    line.append(text);
    line.append('"');
}

bool namesATime(const LightweightString<char>& name) {
    const LightweightString<char> lowered = name.toLower();
    return lowered.view().find("start") != std::string_view::npos ||
           lowered.view().find("end") != std::string_view::npos;
}

} // namespace

// -- parameters --

void oledb::storeLoadedParam(const char* line) {
    const std::string_view text = Tarn::trimmedFront(line);
    const std::size_t colon = text.find(':');
    if (colon == 0 || colon == std::string_view::npos || params_.size() >= maxParams) {
        return;
    }
    params_.push_back({LightweightString<char>{text.substr(0, colon)},
                       LightweightString<char>{Tarn::trimmedFront(text.substr(colon + 1))}});
}

void oledb::readRevision(const char* line) {
    const std::string_view text{line};
    const std::size_t digit = text.find_first_of("0123456789", revisionPrefix.size());
    revision_ = digit == std::string_view::npos ? 0 : Tarn::parseInt(line + digit);
    if (revision_ != currentRevision) {
        console_printf("oledb::read_text:  Warning: oledb is revision %d, current level is %d\n",
                       revision_, currentRevision);
    }
}

int oledb::read_params(TextFile& file, dbrecord* scratch) {
    if (!scratch) {
        return 0;
    }
    int found = scratch->read(file);
    if (found == 0 || !startsWithIgnoringCase(firstField(*scratch), revisionPrefix)) {
        return found;
    }
    readRevision(scratch->getField(0).c_str());
    do {
        storeLoadedParam(scratch->getField(0).c_str());
        found = scratch->read(file);
    } while (found != 0 && compareIgnoringCase(firstField(*scratch), headerWord) != 0);
    return found;
}

std::string parameterLine(std::string_view name, std::string_view value) {
    std::string line;
    line += '"';
    line += name;
    line += ':';
    line += value;
    return line += '"';
}

int oledb::save_params(TextFile& file) const {
    for (const Param& param : params_) {
        file.appendLine(parameterLine(param.name.view(), param.value.view()));
    }
    return 1;
}

// -- header --

/// Each column's longest value. One pass over the rows: column by column would fetch every row
/// anew.
std::vector<unsigned> oledb::widestValues() {
    std::vector<unsigned> widths(numFields_);
    if (!isPlain(*this)) {
        for (unsigned col = 0; col < numFields_; ++col) {
            widths[col] = get_fieldsize(col);
        }
        return widths;
    }
    for (unsigned row = 0; row < rows_.count(); ++row) {
        rows_.at(row)->widen(widths);
    }
    return widths;
}

int oledb::save_column_header(TextFile& file, bool namesOnly) {
    Tarn::LineBuffer widths;
    Tarn::LineBuffer types;
    Tarn::LineBuffer names;
    const std::vector<unsigned> widest = namesOnly ? std::vector<unsigned>{} : widestValues();
    for (unsigned i = 0; i < numFields_; ++i) {
        appendQuotedRaw(names, fieldNames_[i].view());
        if (!namesOnly) {
            const unsigned width = std::max(widest[i], getMinFieldSize(get_fieldname(i)));
            appendQuotedRaw(widths, std::to_string(width));
            appendSeparator(types);
            appendQuotedValue(types, oledb_fieldtype_to_string(fieldTypes_[i]).view());
        }
    }
    if (!namesOnly) {
        file.appendLine(std::string_view{"\"OLEDB\""});
        file.appendLine(widths.view());
        file.appendLine(types.view());
    }
    file.appendLine(names.view());
    return 1;
}

void oledb::takeFieldCount(int found) {
    numFields_ = static_cast<unsigned>(found);
    if (numFields_ > maxFileFields) {
        console_printf("****WARNING:  OLEDB %s has too many fields", toUTF8(filename_).c_str());
        numFields_ = maxFileFields;
    }
}

bool oledb::readColumns(TextFile& file, dbrecord& scratch) {
    takeFieldCount(scratch.read(file));
    if (static_cast<unsigned>(scratch.read(file)) != numFields_) {
        fill_error_info(headerError, typesLine, 0, 0);
        return false;
    }
    for (unsigned i = 0; i < numFields_; ++i) {
        const auto col = static_cast<unsigned short>(i);
        set_fieldtype(i, oledb_string_to_fieldtype(scratch.getField(col).c_str()));
    }
    if (static_cast<unsigned>(scratch.read(file)) != numFields_) {
        fill_error_info(headerError, namesLine, 0, 0);
        return false;
    }
    return true;
}

void oledb::takeHeaderlessColumns(const dbrecord& scratch, int fieldsFound) {
    takeFieldCount(fieldsFound);
    for (unsigned i = 0; i < numFields_; ++i) {
        const bool isTime = namesATime(scratch.getField(static_cast<unsigned short>(i)));
        set_fieldtype(i, isTime ? DBFieldTypes::TIMECODE : DBFieldTypes::TEXT);
        if (isTime) {
            timecodeColumns_.push_back(i);
        }
    }
}

void oledb::nameColumns(const dbrecord& scratch) {
    for (unsigned i = 0; i < numFields_; ++i) {
        set_fieldname(i, scratch.getField(static_cast<unsigned short>(i)).c_str());
    }
    timecodeColumns_.push_back(~0U);
}

/// Takes the columns from the heading; false where there is none that can be used.
bool oledb::readHeader(TextFile& file, dbrecord& scratch, int fieldsFound, bool requireHeader) {
    if (fieldsFound == 0) {
        return false; // an empty file, or one that ends within its parameters
    }
    if (compareIgnoringCase(firstField(scratch), headerWord) == 0) {
        return readColumns(file, scratch);
    }
    if (requireHeader) {
        return false;
    }
    takeHeaderlessColumns(scratch, fieldsFound);
    return true;
}

void oledb::loadFromFile(int maxRows, bool requireHeader) {
    free();
    TextFile file;
    if (file.streamFrom(filename_, '\n')) {
        loadFromText(file, maxRows, requireHeader);
    }
    if (file.streamFailed()) {
        free(); // no part of a file is taken for it
    }
}

void oledb::loadFromText(TextFile& file, int maxRows, bool requireHeader) {
    dbrecord scratch{headingFields};
    const int found = read_params(file, &scratch);
    if (!readHeader(file, scratch, found, requireHeader)) {
        return;
    }
    nameColumns(scratch);
    post_init();
    add_text(file, 0, maxRows);
    clear_changed();
    valid_ = 1; // last: a table that memory ran out for is not taken for the whole file
}

// -- rows --

bool oledb::rowFillsFields(const dbrecord& row, int appended) {
    if (row.nfields() == numFields_) {
        return true;
    }
    fill_error_info(1, appended, 0, 0);
    console_printf("oledb::add_text: returning because not all fields filled\n");
    Tarn::putLine("oledb::add_text: returning because not all fields filled");
    return false;
}

/// Reads the lines that stand in for the one in `row`: the next for a first line that is left out,
/// the third from here for a second header. False where one of them finds nothing.
bool oledb::replaceHeadingLines(TextFile& file, dbrecord& row, bool leaveOutFirst) {
    int further = 0;
    if (leaveOutFirst) {
        further = 1;
    } else if (firstField(row) == headerWord) {
        further = 3;
    }
    for (int i = 0; i < further; ++i) {
        if (row.read(file) == 0) {
            console_printf("oledb::add_text: returning because no more lines\n");
            return false;
        }
    }
    return true;
}

int oledb::add_text(TextFile& file, int skipFirst, int maxRows) {
    if (maxRows < 1 || rows_.count() >= rows_.capacity()) {
        return 0;
    }
    int appended = 0;
    RecentValues recent{numFields_};
    while (appended < maxRows) {
        auto row = newRow();
        if (!row->readOneOfMany(file, recent)) {
            break;
        }
        if (appended == 0) {
            rowRead(); // the clock would cost more than a value, so the others count at the end
        }
        if (row->nfields() == 0 || !rowFillsFields(*row, appended) ||
            !replaceHeadingLines(file, *row, skipFirst != 0 && appended == 0)) {
            break;
        }
        rows_.makeRoomFor(1);
        rows_.append(std::move(row));
        ++appended;
    }
    if (appended != 0) {
        rowRead();
    }
    return appended;
}

int oledb::load_text(int maxRows) {
    Tarn::reportFailedCheck("false", "ole/oledb/oledb line 385");
    TextFile file;
    file.load(filename_, '\n', false);
    return add_text(file, 1, maxRows);
}

// -- saving --

void oledb::writeTagColumn() {
    const int col = get_fieldnum("Tag");
    if (col < 0) {
        return;
    }
    for (unsigned i = 0; i < rows_.count(); ++i) {
        dbrecord& row = *rows_.at(i);
        row.set_field(col, row.tag_);
    }
}

bool oledb::saveRows(bool namesOnly, bool taggedOnly) {
    TextFile file;
    file.stream(filename_, lineEnds);
    save_params(file);
    save_column_header(file, namesOnly);
    Tarn::LineBuffer line;
    for (unsigned i = 0; i < rows_.count(); ++i) {
        if (i % rowsBetweenReports == 0) {
            SystemWatchdog::reportProgress(i, rows_.count());
        }
        const dbrecord* const row = rows_.at(i);
        if (!taggedOnly || row->tag_ != 0) {
            row->writeLine(file, line);
        }
    }
    const bool saved = file.save(filename_, lineEnds);
    if (saved && rows_.count() != 0) {
        SystemWatchdog::reportProgress(rows_.count(), rows_.count());
    }
    return saved;
}

int oledb::save_text() {
    writeTagColumn();
    return saveRows(false, false) ? static_cast<int>(rows_.count()) : 0;
}

int oledb::save_text_without_header() {
    writeTagColumn();
    return saveRows(true, false) ? static_cast<int>(rows_.count()) : 0;
}

int oledb::save_tags() {
    return saveRows(false, true) ? 1 : 0;
}
