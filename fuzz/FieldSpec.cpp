// Field specifications, one a line, given to one view after the other: its list names the known
// fields in their order, behind those of the earlier ones in reverse.

#include "ole/fieldspec/SExpr.h"
#include "ole/oledb/ODBView.h"
#include "tarn/GrowString.h"

#include "Fuzz.h"

#include <algorithm>

namespace {

// Of all specifications so far, for each goes behind the reverse of the list. The dearest is "a,":
// two bytes for an element of the list and its name: 45 bytes and 1 allocation a byte.
constexpr Bounds adding{.live = {4'000, 90}, .sum = {4'000, 120}, .blocks = {20, 2}};

const Texts fields = {"Name", "Start TC", "a", "A", "b", "a", "voidref"};

void append(Texts& list, const std::string& spec) {
    std::reverse(list.begin(), list.end());
    std::string name;
    for (const char c : spec + ",") {
        if (c != ',' && c != '\t') {
            name += c;
            continue;
        }
        if (std::find(fields.begin(), fields.end(), name) != fields.end()) {
            list.push_back(name);
        }
        name.clear();
    }
}

std::string joined(const Texts& list) {
    std::string text = "(";
    for (const std::string& name : list) {
        text += (text == "(" ? "" : " ") + name;
    }
    return text + ")";
}

} // namespace

void fuzz(std::string_view input) {
    const auto table = tableOfFields(fields);
    ODBViewRep view{table.get(), ""};
    const std::string all{input.substr(0, input.find('\0'))};
    Texts list;
    std::size_t at = 0;
    for (int i = 0; i < 20 && at <= all.size(); ++i) {
        const std::size_t end = std::min(all.find('\n', at), all.size());
        const std::string spec = all.substr(at, end - at);
        at = end + 1;
        within(adding, at, [&] { view.fieldSpec(spec.c_str()); });
        append(list, spec);
        ASSERT_EQ(view.fieldSpecText(), spec);
        GrowString text;
        if (view.fieldList()) {
            view.fieldList()->asString(text);
        }
        ASSERT_EQ(std::string{text.c_str()}, list.empty() ? "" : joined(list));
    }
}
