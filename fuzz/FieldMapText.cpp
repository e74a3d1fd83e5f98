// Texts of field maps, behind a byte for the number of fields: read as the plain reader does, and
// read again from what is written.

#include "support/FieldMapModel.h"

#include "Fuzz.h"

#include <functional>
#include <numeric>

namespace {

// For every field and every character of the text: a name is made anew for each number that is
// read, and stays where its field is not in the map yet.
constexpr Bounds mapping{.live = {1'000, 80}, .sum = {1'000, 120}, .blocks = {10, 3}};

/// Up to 31, for maps compare all names with all; up to 255 where the sum of the bytes says so,
/// which any change to an input can turn.
unsigned numberOfFields(std::string_view input) {
    const auto value = [](char c) { return static_cast<unsigned>(static_cast<unsigned char>(c)); };
    const unsigned sum = std::transform_reduce(input.begin(), input.end(), 0U, std::plus{}, value);
    return sum % 16 == 0 ? value(input[0]) : value(input[0]) % 32;
}

} // namespace

void fuzz(std::string_view input) {
    if (input.empty()) {
        return;
    }
    const unsigned n = numberOfFields(input);
    const std::string_view rest = input.substr(1, 2000);
    const std::string text{rest.substr(0, rest.find('\0'))};
    Texts fields;
    for (unsigned i = 0; i < n; ++i) { // from field 180 on some have the name of another
        fields.push_back((i % 2 == 0 ? "f" : "F") + std::to_string(i < 180 ? i : i % 200));
    }
    const auto table = tableOfFields(fields);
    table->set_param_val(FieldMap::parameterName, text.c_str());
    const ODBView view{table.get()};
    FieldMap map = within(mapping, text.size() + n, [&] { return FieldMap{view}; });
    ASSERT_EQ(entriesOf(map), readInto({}, text, fields));
    ASSERT_LE(map.numVisible(), map.count());
    ASSERT_LE(map.count(), FieldMap::maxEntries);
    for (int i = 0; i < map.numVisible(); ++i) {
        ASSERT_LT(map.getVisibleFieldIndex(i), static_cast<int>(n));
    }
    const auto written = within(mapping, text.size() + n, [&] { return map.asString(); });
    table->set_param_val(FieldMap::parameterName, written.c_str());
    if (n < 100) { // all names differ, and all numbers are read back
        ASSERT_EQ(entriesOf(FieldMap{*table}), entriesOf(map)) << written.c_str();
    }
    const Texts before = entriesOf(map);
    view->set_param_val(FieldMap::parameterName, written.c_str());
    map.setSourceDb(view);
    ASSERT_EQ(entriesOf(map), readInto(before, written.c_str(), fields));
}
