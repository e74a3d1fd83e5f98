#pragma once

#include "tarn/Cookie.h"
#include "tarn/export.h"

#include <unordered_set>
#include <vector>

/// Cookies without repetition, in the order in which they were first added.
class TARN_API CookieSet {
public:
    /// Adds a cookie; returns false when it was there already.
    bool add(const Cookie& cookie);
    /// Whether a cookie was added.
    [[nodiscard]] bool contains(const Cookie& cookie) const;
    /// The number of cookies.
    [[nodiscard]] std::size_t size() const noexcept { return order_.size(); }
    /// Whether there is none.
    [[nodiscard]] bool empty() const noexcept { return order_.empty(); }
    ///@{
    /// The cookies in their order.
    [[nodiscard]] CookieVec::const_iterator begin() const noexcept { return order_.begin(); }
    [[nodiscard]] CookieVec::const_iterator end() const noexcept { return order_.end(); }
    ///@}

private:
    CookieVec order_;
    std::unordered_set<Cookie, CookieHash> known_;
};
