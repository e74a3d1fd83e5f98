// Export in the CSV form of editors, by the module.
//
// Its result does not tell whether the file was written. The file is there before and empty, and
// the module replaces it whole or not at all: while it is empty, nothing was written.

#include "moduleCsv.h"

#include "fieldMaps.h"
#include "files.h"
#include "messages.h"
#include "misc/CurrentProject.h"
#include "ole/interchange/CSV.h"
#include "ole/oledb/oledb.h"
#include "selection.h"
#include "tableValues.h"
#include "tarn/numbers.h"
#include "TemporaryFile.h"

#include <cerrno>
#include <cmath>
#include <filesystem>
#include <optional>
#include <system_error>

namespace {

using Rate = Tarn::CurrentProject::FrameRate;

constexpr double fastest = 1000;
constexpr double nearEnough = 0.005;

/// 24 as 24/1, 23.976 or 23.98 as 24000/1001.
std::optional<Rate> rateOf(const char* text) {
    const double rate = text ? Tarn::parseDouble(text) : 0;
    if (!(rate > 0 && rate < fastest)) {
        return std::nullopt;
    }
    const int whole = static_cast<int>(std::ceil(rate));
    if (rate == whole) {
        return Rate{whole, 1};
    }
    return std::abs(rate - whole * 1000.0 / 1001) < nearEnough
               ? Rate{whole * 1000, 1001}
               : Rate{static_cast<int>(std::lround(rate * 1000)), 1000};
}

bool holdsSeconds(oledb& table, const Selection& selection) {
    for (const unsigned col : selection.columns) {
        if (table.get_field_type(col) == DBFieldTypes::DOUBLE) {
            return true;
        }
    }
    return false;
}

/// Fields that go by the name of another one.
std::vector<std::string> hiddenByName(const FieldMap& map, const Selection& selection,
                                      oledb& table) {
    std::vector<std::string> names;
    int entry = 0;
    for (const unsigned col : selection.columns) {
        const bool taken = map.getVisibleFieldIndex(entry) == static_cast<int>(col);
        if (taken) {
            ++entry;
        } else {
            names.emplace_back(table.get_fieldname(col));
        }
    }
    return names;
}

} // namespace

int writeModuleCsv(oledb& table, const Selection& selection, const std::string& path) {
    if (const auto rate = rateOf(table.get_param_val("FPS"))) {
        Tarn::CurrentProject::setFrameRate(*rate);
    }
    const CSV csv{selection.rows, mapOf(selection.rows, selection.columns)};
    const SignalPause pause; // the module writes through a file that we cannot remove
    errno = 0;
    csv.writeTo(modulePath(path));
    const int error = errno;
    std::error_code failed;
    const bool written = std::filesystem::file_size(path, failed) > 0 && !failed;
    return written ? 0 : error == 0 ? EIO : error;
}

bool tellCsvLosses(oledb& table, const Selection& selection) {
    const FieldMap map = mapOf(selection.rows, selection.columns);
    const std::vector<std::string> hidden = hiddenByName(map, selection, table);
    if (!hidden.empty()) {
        say("csv knows fields by their names alone, and these come under another one of their name "
            "or not at all: {}",
            listed(hidden));
    }
    std::size_t open = 0;
    for (unsigned row = 0; row < selection.rows->get_num_records(); ++row) {
        for (const unsigned col : selection.columns) {
            open +=
                valueOf(*selection.rows, row, col).find_first_of("\"\r\n") == std::string_view::npos
                    ? 0
                    : 1;
        }
    }
    if (open != 0) {
        say("{} quotes or line breaks, which csv does not mark; --format rfc4180 does",
            counted(open, "value holds", "values hold"));
    }
    if (holdsSeconds(table, selection) && !rateOf(table.get_param_val("FPS"))) {
        sayLine("seconds are counted as 25 frames each, for the table has no parameter FPS");
    }
    return !hidden.empty() || open != 0;
}
