// Texts of field maps, behind a byte for the number of fields: read as the plain reader does, and
// read again from what is written.

#include "support/FieldMapModel.h"

#include "Fuzz.h"

#include <set>

void fuzz(std::string_view input) {
    if (input.empty()) {
        return;
    }
    const auto n = static_cast<unsigned char>(input[0]);
    const std::string_view rest = input.substr(1, 2000);
    const std::string text{rest.substr(0, rest.find('\0'))};
    Texts fields;
    for (unsigned i = 0; i < n; ++i) { // from field 180 on some have the name of another
        fields.push_back((i % 2 == 0 ? "f" : "F") + std::to_string(i < 180 ? i : i % 200));
    }
    const auto table = tableOfFields(fields);
    table->set_param_val(FieldMap::parameterName, text.c_str());
    FieldMap map{*table};
    ASSERT_EQ(entriesOf(map), readInto({}, text, fields));
    ASSERT_LE(map.numVisible(), map.count());
    ASSERT_LE(map.count(), FieldMap::maxEntries);
    for (int i = 0; i < map.numVisible(); ++i) {
        ASSERT_LT(map.getVisibleFieldIndex(i), n);
    }
    const LightweightString<char> written = map.asString();
    table->set_param_val(FieldMap::parameterName, written.c_str());
    if (n < 100) { // all names differ, and all numbers are read back
        ASSERT_EQ(entriesOf(FieldMap{*table}), entriesOf(map)) << written.c_str();
    }
    const Texts before = entriesOf(map);
    map.setSourceDb(ODBView{table.get()});
    ASSERT_EQ(entriesOf(map), readInto(before, written.c_str(), fields));
}
