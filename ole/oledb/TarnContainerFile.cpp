// Container files: a table file whose parameters describe a collection and whose rows are its
// items.
//
//   container = table file with a column "Cookie"
//   "Name"      = the collection's name, UTF-8
//   "Permanent" = "true" or "false"
//   "Cookie"    = an item's cookie, long form
//
// Who reads an item takes only a cookie with its kind letter; who looks for one also takes a bare
// UUID. Both are fixed, for files exist that rely on them.

#include "ole/oledb/TarnContainerFile.h"

#include "misc/BoolString.h"
#include "misc/diagnostics.h"
#include "misc/OS.h"
#include "misc/paths.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"

#include <limits>
#include <utility>

namespace {

constexpr const char* cookieColumn = "Cookie";
constexpr std::uint8_t allFlags = 255;

Cookie cookieOfName(const LightweightString<wchar_t>& path) {
    return Cookie{stripPathAndExt(path), false};
}

LightweightString<char> cookieTextOf(const dbrecord* row, int col) {
    return row ? row->getField(static_cast<unsigned short>(col)) : LightweightString<char>{};
}

} // namespace

// -- keys and file names --

const char* TarnContainerFile::getNameParamKey() noexcept {
    return "Name";
}

const char* TarnContainerFile::getPermanentParamKey() noexcept {
    return "Permanent";
}

Cookie TarnContainerFile::getCookieFromFilename(const LightweightString<wchar_t>& path) {
    const Cookie named = cookieOfName(path);
    if (path.endsWith(L"sg", false)) {
        return convertCookie(named, CookieType::Group, allFlags);
    }
    if (path.endsWith(L"rak", false)) {
        return convertCookie(named, CookieType::Rack, allFlags);
    }
    return named;
}

// -- items --

bool TarnContainerFile::Reader::Item::has(unsigned col) const noexcept {
    return row_ && col < row_->nfields();
}

LightweightString<char> TarnContainerFile::Reader::Item::getAttrib(unsigned col) const {
    return has(col) ? row_->getField(static_cast<unsigned short>(col)) : "";
}

int TarnContainerFile::Reader::Item::getAttrib(unsigned col, int def) const {
    return has(col) ? Tarn::parseInt(getAttrib(col).c_str()) : def;
}

double TarnContainerFile::Reader::Item::getAttrib(unsigned col, double def) const {
    return has(col) ? Tarn::parseDouble(getAttrib(col).c_str()) : def;
}

// -- reading --

TarnContainerFile::Reader::Reader(LightweightString<wchar_t> file, bool headerOnly)
    : table_{file, headerOnly ? 0 : std::numeric_limits<int>::max(), true}, cookie_{cookieOfName(
                                                                                file)} {}

bool TarnContainerFile::Reader::valid() const {
    return table_.get_valid() != 0 && table_.get_fieldnum(cookieColumn) >= 0;
}

LightweightString<char> TarnContainerFile::Reader::getAttrib(LightweightString<char> key) const {
    const char* const value = valid() ? table_.get_param_val(key.c_str()) : nullptr;
    return value ? value : "";
}

int TarnContainerFile::Reader::getAttrib(LightweightString<char> key, int def) const {
    const LightweightString<char> text = getAttrib(std::move(key));
    return text.empty() ? def : Tarn::parseInt(text.c_str());
}

double TarnContainerFile::Reader::getAttrib(LightweightString<char> key, double def) const {
    const LightweightString<char> text = getAttrib(std::move(key));
    return text.empty() ? def : Tarn::parseDouble(text.c_str());
}

LightweightString<char> TarnContainerFile::Reader::getName() const {
    return getAttrib(getNameParamKey());
}

LightweightString<wchar_t> TarnContainerFile::Reader::getNameW() const {
    return fromUTF8(getName());
}

bool TarnContainerFile::Reader::isPermanent() const {
    bool permanent = false;
    return BoolFromString(getAttrib(getPermanentParamKey()), permanent) && permanent;
}

unsigned TarnContainerFile::Reader::getNumItems() const {
    return valid() ? table_.get_num_records() : 0;
}

TarnContainerFile::Reader::Item TarnContainerFile::Reader::getItem(unsigned i) const {
    if (i >= getNumItems()) {
        return {};
    }
    const dbrecord* const row = table_.get_record(i);
    return {row, Cookie{cookieTextOf(row, table_.get_fieldnum(cookieColumn)), true}};
}

int TarnContainerFile::Reader::getItemAttribIndex(const char* name) const {
    return valid() ? table_.get_fieldnum(name) : -1;
}

bool TarnContainerFile::Reader::contains(const Cookie& cookie) const {
    const int col = table_.get_fieldnum(cookieColumn);
    const unsigned items = getNumItems();
    for (unsigned i = 0; i < items; ++i) {
        if (Cookie{cookieTextOf(table_.get_record(i), col), false}.compare(cookie) == 0) {
            return true;
        }
    }
    return false;
}

CookieSet TarnContainerFile::Reader::getContents() const {
    CookieSet contents;
    const unsigned items = getNumItems();
    for (unsigned i = 0; i < items; ++i) {
        contents.add(getItem(i).getCookie());
    }
    return contents;
}

// -- writing --

TarnContainerFile::Writer::Writer(DBFieldDesc* columns)
    : table_{columns}, cookieFieldIdx_{table_.get_fieldnum(cookieColumn)} {
    if (cookieFieldIdx_ < 0) {
        Tarn::reportFailedCheck("cookieFieldIdx_ >= 0", "ole/oledb/TarnContainerFile line 203");
    }
}

dbrecord* TarnContainerFile::Writer::addItem(const Cookie& cookie) {
    if (cookie.kind() == CookieType::Invalid) {
        return nullptr;
    }
    const LightweightString<char> text = cookie.asString(true);
    dbrecord* const row = table_.get_record(static_cast<unsigned>(table_.add_records(1)));
    row->set_field(cookieFieldIdx_, text.c_str(), true);
    return row;
}

void TarnContainerFile::Writer::setName(LightweightString<char> name) {
    setAttrib(getNameParamKey(), std::move(name));
}

void TarnContainerFile::Writer::setAttrib(LightweightString<char> key,
                                          LightweightString<char> value) {
    table_.add_param(key.c_str(), value.c_str());
}

void TarnContainerFile::Writer::setPermanent(bool permanent) {
    setAttrib(getPermanentParamKey(), BoolAsString(permanent));
}

void TarnContainerFile::Writer::save(const LightweightString<wchar_t>& path) {
    if (!OS().isRegularFile(path)) { // nothing to replace, or a device or pipe
        table_.set_filename(path);
        table_.save_text();
        return;
    }
    const LightweightString<wchar_t> beside = path + L".tmp";
    table_.set_filename(beside);
    OS().removeFile(beside);
    if (fileExists(beside)) {
        return; // it would be taken for the new file
    }
    table_.save_text();
    // Saving leaves a whole file or none. The move replaces in one step: a crash never finds both
    // names empty. Where somebody took the old file away meanwhile, there are no permissions to
    // keep.
    const bool alike = OS().copyPermissions(path, beside) || !OS().isRegularFile(path);
    if (!alike || !OS().moveFile(beside, path, 1)) {
        OS().removeFile(beside);
    }
}
