// Field maps: entries, and their text form.
//
//   map   = { entry " " }       the last entry stands without a blank
//   entry = [ "-" ] number      the field's number in the source view, from 1; "-" hides it
//
// The slots behind the last entry are not cleaned up: flags and names left there can be read, and
// editors do.

#include "ole/interchange/FieldMap.h"

#include "tarn/Ascii.h"
#include "tarn/GrowString.h"
#include "tarn/StringFunctions.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr std::size_t charactersRead = 3;
constexpr int fieldsRead = 256; // numbers from here on are not taken

bool isSlot(int i) noexcept {
    return i >= 0 && i < FieldMap::maxEntries;
}

std::size_t at(int i) noexcept {
    return static_cast<std::size_t>(i);
}

/// Reads a number as `sscanf` with "%d" does; none where the text does not begin with one. The
/// text is short, so the number always fits.
std::optional<int> numberIn(std::string_view text) noexcept {
    const auto* c = std::find_if_not(text.begin(), text.end(), Tarn::isSpace);
    const bool negative = c != text.end() && *c == '-';
    if (c != text.end() && (*c == '-' || *c == '+')) {
        ++c;
    }
    if (c == text.end() || !Tarn::isDigit(*c)) {
        return std::nullopt;
    }
    int number = 0;
    for (; c != text.end() && Tarn::isDigit(*c); ++c) {
        number = number * 10 + (*c - '0');
    }
    return negative ? -number : number;
}

std::size_t behindNumber(std::string_view text, std::size_t p) noexcept {
    while (p < text.size() && (Tarn::isDigit(text[p]) || text[p] == '-')) {
        ++p;
    }
    return p < text.size() && text[p] == ' ' ? p + 1 : p;
}

} // namespace

FieldMap::FieldMap(const FieldMap& other) {
    *this = other;
}

FieldMap::FieldMap(const ODBView& view) {
    setSourceDb(view);
}

FieldMap::FieldMap(oledb& table) : FieldMap{ODBView{&table}} {}

FieldMap& FieldMap::operator=(const FieldMap& other) {
    if (this != &other) {
        source_ = other.source_;
        count_ = other.count_;
        std::copy_n(other.names_.begin(), count_, names_.begin());
        std::copy_n(other.visible_.begin(), count_, visible_.begin());
    }
    return *this;
}

void FieldMap::init() {
    visible_.fill(0);
    count_ = 0;
}

// -- source view and text form --

void FieldMap::setSourceDb(const ODBView& view) {
    source_ = view;
    if (!source_) {
        return;
    }
    appendFromText(source_->get_param_val(parameterName));
    if (count_ == 0) {
        for (unsigned i = 0; i < source_->get_num_fields(); ++i) {
            appendField(i, true);
        }
    }
}

void FieldMap::appendFromText(std::string_view text) {
    std::size_t p = 0;
    while (p < text.size()) {
        const auto number = numberIn(text.substr(p, charactersRead));
        if (!number) {
            return;
        }
        if (*number != 0 && std::abs(*number) < fieldsRead) {
            appendField(static_cast<unsigned>(std::abs(*number)) - 1, *number > 0);
        }
        const std::size_t next = behindNumber(text, p);
        if (next == p) { // white space or "+" was read over, and would be again and again
            return;
        }
        p = next;
    }
}

void FieldMap::appendField(unsigned field, bool visible) {
    if (field < source_->get_num_fields()) {
        append(source_->get_fieldname(field), visible);
    }
}

int FieldMap::fieldNumber(int i) const {
    return source_ && source_->source() ? source_->get_fieldnum(names_[at(i)].c_str()) : -1;
}

LightweightString<char> FieldMap::asString() const {
    GrowString text;
    for (int i = 0; i < count_; ++i) {
        text.append(i > 0 ? " " : "").append(visible_[at(i)] != 0 ? "" : "-");
        text.append(fieldNumber(i) + 1);
    }
    return text.string();
}

// -- reading --

int FieldMap::getFieldIdx(const LightweightString<char>& name) const {
    for (int i = 0; i < count_; ++i) {
        if (compareIgnoringCase(names_[at(i)].view(), name.view()) == 0) {
            return i;
        }
    }
    return -1;
}

bool FieldMap::containsField(const LightweightString<char>& name) const {
    return getFieldIdx(name) != -1;
}

bool FieldMap::isVisible(const LightweightString<char>& name) const {
    return isVisible(getFieldIdx(name));
}

bool FieldMap::isVisible(int slot) const {
    return isSlot(slot) && visible_[at(slot)] != 0;
}

LightweightString<char> FieldMap::getName(int i) const {
    return i >= 0 && i < count_ ? names_[at(i)] : LightweightString<char>{};
}

int FieldMap::numVisible() const {
    return static_cast<int>(std::count(visible_.begin(), visible_.begin() + count_, 1));
}

int FieldMap::getVisibleFieldIndex(int n) const {
    for (int i = 0; n >= 0 && i < count_; ++i) {
        if (visible_[at(i)] != 0 && n-- == 0) {
            return fieldNumber(i);
        }
    }
    return -1;
}

// -- changing --

void FieldMap::append(const LightweightString<char>& name, bool visible) {
    if (count_ < maxEntries && !containsField(name)) {
        set(count_++, name, visible);
    }
}

void FieldMap::set(int i, const LightweightString<char>& name, bool visible) {
    if (i >= 0 && i < count_) {
        names_[at(i)] = name;
        visible_[at(i)] = visible ? 1 : 0;
    }
}

void FieldMap::setVisible(int slot, bool visible) {
    if (isSlot(slot)) {
        visible_[at(slot)] = visible ? 1 : 0;
    }
}

void FieldMap::invertVisible(int slot) {
    setVisible(slot, !isVisible(slot));
}

void FieldMap::setName(int slot, const LightweightString<char>& name) {
    if (isSlot(slot)) {
        names_[at(slot)] = name;
    }
}

void FieldMap::swap(int a, int b) {
    if (isSlot(a) && isSlot(b)) {
        std::swap(names_[at(a)], names_[at(b)]);
        std::swap(visible_[at(a)], visible_[at(b)]);
    }
}

bool FieldMap::remove(const LightweightString<char>& name) {
    const int i = getFieldIdx(name);
    if (i < 0) {
        return false;
    }
    std::copy(names_.begin() + i + 1, names_.begin() + count_, names_.begin() + i);
    std::copy(visible_.begin() + i + 1, visible_.begin() + count_, visible_.begin() + i);
    --count_;
    return true;
}
