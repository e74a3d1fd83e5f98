// Texts as elements of an owning list.

#include "tarn/StringList.h"

#include "tarn/GrowString.h"

StringRec::~StringRec() = default;
StringList::~StringList() = default;

int StringRec::compare(const ArrayRec& other) const {
    const auto* const rec = dynamic_cast<const StringRec*>(&other);
    return rec ? text_.view().compare(rec->text_.view()) : compareAddress(other);
}

void StringRec::printOn(GrowString& out) const {
    out.append(text_);
}

const char* StringList::text(unsigned i) const noexcept {
    const auto* const rec = dynamic_cast<const StringRec*>(at(i));
    return rec ? rec->string().c_str() : "";
}
