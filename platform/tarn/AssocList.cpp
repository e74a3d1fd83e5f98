// Names with values, kept in a plain vector: the lists are short and their order matters.

#include "tarn/AssocList.h"

#include "tarn/StringFunctions.h"

void AssocList::set(const LightweightString<char>& name, const LightweightString<char>& value) {
    for (Entry& entry : entries_) {
        if (compareIgnoringCase(entry.first.view(), name.view()) == 0) {
            entry.second = value;
            return;
        }
    }
    entries_.emplace_back(name, value);
}

const LightweightString<char>* AssocList::find(std::string_view name) const noexcept {
    for (const Entry& entry : entries_) {
        if (compareIgnoringCase(entry.first.view(), name) == 0) {
            return &entry.second;
        }
    }
    return nullptr;
}
