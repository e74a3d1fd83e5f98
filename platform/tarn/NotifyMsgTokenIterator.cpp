// Tokens of a message's text: runs of anything but blanks (code 32).

#include "tarn/NotifyMsgTokenIterator.h"

#include "tarn/NotifyMsg.h"
#include "tarn/numbers.h"

#include <algorithm>

NotifyMsgTokenIterator::NotifyMsgTokenIterator(const NotifyMsg& msg) noexcept
    : NotifyMsgTokenIterator{std::string_view{msg.text()}} {}

NotifyMsgTokenIterator::NotifyMsgTokenIterator(std::string_view text) noexcept : rest_{text} {
    ++*this;
}

int NotifyMsgTokenIterator::number() const noexcept {
    return Tarn::parseInt(token_);
}

NotifyMsgTokenIterator& NotifyMsgTokenIterator::operator++() noexcept {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
    token_ = rest_.substr(0, rest_.find(' '));
    rest_.remove_prefix(token_.size());
    return *this;
}
