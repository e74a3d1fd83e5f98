#pragma once

#include "tarn/export.h"

#include <string_view>

class NotifyMsg;

/// Walks the blank-separated tokens of a message's text.
///
///     for (NotifyMsgTokenIterator it{msg}; it.valid(); ++it) use(it.number());
class TARN_API NotifyMsgTokenIterator {
public:
    ///@{
    /// Stands at the first token. The message, or the text, must outlive the iterator.
    explicit NotifyMsgTokenIterator(const NotifyMsg& msg) noexcept;
    explicit NotifyMsgTokenIterator(std::string_view text) noexcept;
    ///@}

    /// False behind the last token.
    [[nodiscard]] bool valid() const noexcept { return !token_.empty(); }
    /// The token it stands at; "" behind the last.
    [[nodiscard]] std::string_view token() const noexcept { return token_; }
    /// The whole number that the token begins with, kept within 32 bits; 0 where there is none.
    [[nodiscard]] int number() const noexcept;
    /// Goes to the next token.
    NotifyMsgTokenIterator& operator++() noexcept;

private:
    std::string_view rest_;
    std::string_view token_;
};
