// The block into which rows export their values.

#include "misc/configb.h"

void configb::set(const char* key, const strp_field& value) {
    values_.insert_or_assign(LightweightString<char>{key}, value);
}

const strp_field* configb::get(const char* key) const {
    const auto found = values_.find(LightweightString<char>{key});
    return found != values_.end() ? &found->second : nullptr;
}
