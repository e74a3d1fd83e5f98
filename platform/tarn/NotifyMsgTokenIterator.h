#pragma once

#include "tarn/export.h"

#include <string_view>

class NotifyMsg;

/// Walks the blank-separated tokens of a message's text.
///
///     for (NotifyMsgTokenIterator it{msg}; it.valid(); ++it) use(it.number());
class TARN_API NotifyMsgTokenIterator {
public:
    /// The message must outlive the iterator.
    explicit NotifyMsgTokenIterator(const NotifyMsg& msg) noexcept;
    explicit NotifyMsgTokenIterator(std::string_view text) noexcept;

    [[nodiscard]] bool valid() const noexcept { return !token_.empty(); }
    [[nodiscard]] std::string_view token() const noexcept { return token_; }
    /// The whole number that the token begins with, see `Tarn::parseInt`; 0 where there is none.
    [[nodiscard]] int number() const noexcept;
    NotifyMsgTokenIterator& operator++() noexcept;

private:
    std::string_view rest_;
    std::string_view token_;
};
