// Columns beside the standard ones, named by what stands in the logs.
//
// A table file holds names as they are, in quotes, in one line of at most 4095 bytes. So a name
// must hold no quotes, no backslash before an n, no control characters and no blanks at its ends;
// the module itself takes ampersands out of names.

#include "extraColumns.h"

#include "ole/interchange/ALE.h"
#include "ole/oledb/oledb.h"
#include "tarn/Ascii.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr unsigned mostColumns = 255;
constexpr std::size_t longestLine = 4095;
constexpr std::size_t quotesAndComma = 3;

/// Bytes of the names' line, one comma too many.
std::size_t namesBytes(oledb& table) {
    std::size_t bytes = 0;
    for (unsigned col = 0; col < table.get_num_fields(); ++col) {
        bytes += std::string_view{table.get_fieldname(col)}.size() + quotesAndComma;
    }
    return bytes;
}

/// The name as the module keeps it.
std::string storedName(const std::string& name) {
    const DBFieldDesc fields[] = {{name.c_str(), DBFieldTypes::TEXT}, {}};
    oledb probe{fields};
    return probe.get_fieldname(0);
}

/// What of a title can stand in a table file.
std::string lastingName(std::string_view title) {
    std::string name;
    for (std::size_t i = 0; i < title.size(); ++i) {
        const bool escape = title[i] == '\\' && i + 1 < title.size() && title[i + 1] == 'n';
        if (title[i] != '"' && !escape) {
            name += Tarn::isControl(title[i]) ? ' ' : title[i];
        }
    }
    return storedName(std::string{Tarn::trimmed(name)});
}

std::string freeName(const oledb& table, const std::string& wanted) {
    const std::string base = wanted.empty() ? "untitled" : wanted;
    std::string name = base;
    for (int n = 2; table.get_fieldnum(name.c_str()) >= 0; ++n) {
        name = base + " " + std::to_string(n);
    }
    return name;
}

/// Whether one more column of this name leaves the table loadable.
bool hasRoomFor(oledb& table, const std::string& name) {
    return table.get_num_fields() < mostColumns &&
           namesBytes(table) + name.size() + quotesAndComma - 1 <= longestLine;
}

} // namespace

ExtraColumns addExtraColumns(oledb& table, const std::vector<std::string>& titles) {
    ExtraColumns extra;
    for (const std::string& title : titles) {
        if (ALE::findODBColumnFor(table, title.c_str()) >= 0) {
            continue; // an earlier title differs only in case
        }
        const std::string name = freeName(table, lastingName(title));
        const int col = addFieldWithRoom(table, {name.c_str(), DBFieldTypes::TEXT});
        if (col < 0) {
            extra.noRoom.push_back(title);
            continue;
        }
        if (name != title) {
            extra.renamed.emplace_back(title, name);
        }
        if (ALE::findODBColumnFor(table, title.c_str()) != col) {
            extra.filledByHand[title] = static_cast<unsigned>(col);
        }
    }
    return extra;
}

int addFieldWithRoom(oledb& table, const DBFieldDesc& field) {
    const bool isThere = table.get_fieldnum(field.name.c_str()) >= 0;
    return isThere || hasRoomFor(table, field.name.c_str()) ? table.addField(field) : -1;
}
