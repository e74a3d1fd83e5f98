// ALE logs: every line behind "Data" becomes the row that the plain reading of it gives, or is
// reported; what is reported agrees with what the table holds.

#include "ole/interchange/ALE.h"
#include "support/AleModel.h"

#include "Fuzz.h"

namespace {

// Fixed: the room for an empty file of unknown size, and ALE's columns, made once. The dearest line
// is "x": two bytes for a row with its slots, a string, its place in the table, the line's start
// and its number in the report, lists growing by doubling: 77 bytes and 2 allocations a byte.
constexpr Bounds importing{.live = {80'000, 150}, .sum = {80'000, 200}, .blocks = {100, 4}};

} // namespace

void fuzz(std::string_view input) {
    setenv("OLE_PREFS_DIR", files().path("no preferences").c_str(), 1);
    const auto table = makeTable(AleModel::columns);
    ALE::Report report;
    const auto path = written("log", input);
    const bool result =
        within(importing, input.size(), [&] { return ALE::fillODB(*table, path, report); });
    ASSERT_EQ(result, table->get_num_records() != 0);
    AleModel::Log{input}.expectImported(*table, report);
}
