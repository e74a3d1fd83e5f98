// A row: slots of text, the conversions into and out of them, and the export into a configuration
// block. Every write of a single value ends in `noteChanged`.

#include "ole/oledb/dbrecord.h"

#include "misc/config.h"
#include "misc/configb.h"
#include "misc/diagnostics.h"
#include "misc/time_def.h"
#include "ole/oledb/oledb.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"
#include "tarn/StringList.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

DBFieldTypes::eType dbrecord::def_types[256] = {};

namespace {

const int reelFieldsEditable = config_int("dbv_reel_field_editable", 1);

struct ExportedColumn {
    const char* column;
    const char* key;
};

constexpr std::array<ExportedColumn, 11> exportedColumns{{
    {"notes", "notes"},
    {"who", "who"},
    {"scene", "scene"},
    {"description", "description"},
    {"shot", "shot"},
    {"reel", "reelid"},
    {"snd reel", "reelid1"},
    {"24P reel", "24P_reel"},
    {"cam reel", "camreel"},
    {"comp reel", "comp_reel"},
    {"lab reel", "lab_reel"},
}};

// The main reel is exported even where reels cannot be edited; only the further reels are withheld.
constexpr std::size_t exportedWithoutFurtherReels = 6;

std::span<const ExportedColumn> columnsToExport() {
    const std::span all{exportedColumns};
    return reelFieldsEditable != 0 ? all : all.first(exportedWithoutFurtherReels);
}

const char* exportKey(const char* column) {
    const auto columns = columnsToExport();
    const auto found = std::find_if(columns.begin(), columns.end(), [column](const auto& known) {
        return compareIgnoringCase(column, known.column) == 0;
    });
    return found == columns.end() ? nullptr : found->key;
}

/// The value itself where it begins with none, so that records share it.
LightweightString<char> withoutLeadingBlanks(LightweightString<char> value) {
    if (value.empty() || Tarn::isSpace(value[0])) {
        return LightweightString<char>{Tarn::trimmedFront(value.view())};
    }
    return value;
}

} // namespace

const LightweightString<char>& dbrecord::emptyValue() {
    static const LightweightString<char> empty{""};
    return empty;
}

dbrecord::dbrecord(unsigned short n) : values_{n}, size_{n}, nfields_{n} {}

dbrecord::dbrecord(unsigned short n, DBFieldTypes::eType* types)
    : values_{n}, types_{types ? types : def_types}, size_{n}, nfields_{n} {}

dbrecord::dbrecord(const dbrecord& src, unsigned short n)
    : values_{src.values_, n != 0 ? n : src.size_}, types_{src.types_},
      size_{n != 0 ? n : src.size_}, nfields_{size_} {}

// A record assigned to itself loses its leading blanks too.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
dbrecord& dbrecord::operator=(const dbrecord& src) {
    const auto taken = std::min(size_, src.nfields_);
    std::vector<LightweightString<char>> values; // all of them first: memory may run out
    values.reserve(taken);
    for (unsigned short i = 0; i < taken; ++i) {
        values.push_back(withoutLeadingBlanks(src.getField(i)));
    }
    for (std::size_t i = 0; i < taken; ++i) {
        if (!values[i].empty() || !values_[i].empty()) {
            values_[i] = std::move(values[i]);
        }
        noteChanged(static_cast<int>(i));
    }
    nfields_ = taken;
    return *this;
}

dbrecord::~dbrecord() = default;

void dbrecord::noteChanged(int slot) {
    changed_ = 1;
    if (container_) {
        container_->rowWritten(slot);
    }
}

void dbrecord::storeText(std::size_t slot, std::string_view text) {
    LightweightString<char>& held = values_[slot];
    if (!text.empty() || !held.empty()) {
        held = LightweightString<char>{text};
    }
}

int dbrecord::set_field(int i, const char* s, bool skipBlanks) {
    if (i < 0 || i >= size_) {
        return 0;
    }
    const std::string_view text{s ? s : ""};
    storeText(static_cast<std::size_t>(i), skipBlanks ? Tarn::trimmedFront(text) : text);
    noteChanged(i);
    return 1;
}

int dbrecord::set_string(int i, LightweightString<char> text) {
    if (i < 0 || i >= size_) {
        return 0;
    }
    LightweightString<char>& held = values_[static_cast<std::size_t>(i)];
    LightweightString<char> stored = withoutLeadingBlanks(std::move(text));
    if (!stored.empty() || !held.empty()) {
        held = std::move(stored);
    }
    noteChanged(i);
    return 1;
}

int dbrecord::set_field(int i, int v) {
    return set_field(i, Tarn::decimal(v).c_str(), true);
}

int dbrecord::set_field(int i, double d) {
    if (d == invalid_time) {
        Tarn::reportFailedCheck("d != invalid_time", "ole/oledb/dbrecord line 172");
    }
    return set_field(i, Tarn::fixed8(d).c_str(), true);
}

int dbrecord::set_field(int i, bool b) {
    return set_field(i, b ? "t" : "f", true);
}

void dbrecord::clear() {
    std::fill(values_.begin(), values_.end(), LightweightString<char>{});
}

void dbrecord::resizeRecord(int n, int* widths, bool) {
    if (n < 0 || n > 0xFFFF || !widths) {
        return;
    }
    ValueSlots resized{values_, static_cast<std::size_t>(n)};
    values_.swap(resized);
    size_ = static_cast<unsigned short>(n);
    nfields_ = size_;
}

void dbrecord::resizeField(int, int) {}

void dbrecord::setFromStringList(const StringList& list) {
    for (int i = 0; i < nfields_; ++i) {
        set_field(i, list.text(static_cast<unsigned>(i)), true);
    }
}

const char* dbrecord::get_field(unsigned short i) const {
    return i < nfields_ ? getField(i).c_str() : nullptr;
}

int dbrecord::in_field(int i, char* dst, int len) const {
    if (i < 0 || static_cast<std::size_t>(i) >= values_.size() || !dst || len < 0) {
        return 0;
    }
    const std::string_view text = values_[static_cast<std::size_t>(i)].view();
    const auto room = static_cast<std::size_t>(len);
    const std::size_t copied = std::min(text.size(), room);
    std::memcpy(dst, text.data(), copied);
    std::memset(dst + copied, 0, room - copied + 1);
    return 1;
}

int dbrecord::is_blank() const {
    const auto used = std::min<std::size_t>(nfields_, values_.size());
    const auto holdsText = [](const LightweightString<char>& value) { return !value.empty(); };
    return std::none_of(values_.begin(), values_.begin() + used, holdsText) ? 1 : 0;
}

void dbrecord::widen(std::vector<unsigned>& widths) const {
    const std::size_t used = std::min({widths.size(), values_.size(), std::size_t{nfields_}});
    for (std::size_t i = 0; i < used; ++i) {
        widths[i] = std::max(widths[i], static_cast<unsigned>(values_[i].size()));
    }
}

unsigned dbrecord::get_space_used() const {
    unsigned sum = 0;
    for (const LightweightString<char>& value : values_) {
        sum += static_cast<unsigned>(value.size()) + 1;
    }
    return size_ * sum;
}

void dbrecord::asStringList(StringList& out) const {
    for (unsigned short i = 0; i < nfields_; ++i) {
        out.append(std::make_unique<StringRec>(LightweightString<char>{get_field(i)}).release());
    }
}

void dbrecord::set_container(oledb* container) {
    container_ = container;
    if (container) {
        types_ = container->fieldTypes_.data();
    }
}

int dbrecord::update(configb* cfg) const {
    const int nameCol = container_ && cfg ? container_->get_fieldnum("name") : -1;
    if (nameCol < 0) {
        return 0;
    }
    const strp_field name{getField(static_cast<unsigned short>(nameCol))};
    cfg->set("slate/take", name);
    cfg->set("name", name);
    int exported = 0;
    for (unsigned short i = 0; i < nfields_; ++i) {
        if (const char* const key = exportKey(container_->get_fieldname(i))) {
            cfg->set(key, strp_field{getField(i)});
            ++exported;
        }
    }
    return exported;
}
