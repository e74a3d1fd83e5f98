// Rows by what stands in some of their columns. Values hold no zero bytes, which can part them.

#include "rowKey.h"

#include "tableValues.h"
#include "tarn/Ascii.h"

std::string rowKey(const ODBBase& table, unsigned row, const std::vector<unsigned>& columns) {
    std::string key;
    bool any = false;
    for (const unsigned col : columns) {
        for (const char c : valueOf(table, row, col)) {
            key += Tarn::toLower(c);
            any = true;
        }
        key += '\0';
    }
    return any ? key : "";
}
