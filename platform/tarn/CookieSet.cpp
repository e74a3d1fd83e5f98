// A list for the order and a hash set for the question whether a cookie is there, kept in step.

#include "tarn/CookieSet.h"

bool CookieSet::add(const Cookie& cookie) {
    const auto [place, fresh] = known_.insert(cookie);
    if (!fresh) {
        return false;
    }
    try {
        order_.push_back(cookie);
    } catch (...) {
        known_.erase(place);
        throw;
    }
    return true;
}

bool CookieSet::contains(const Cookie& cookie) const {
    return known_.count(cookie) != 0;
}
