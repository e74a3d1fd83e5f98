#pragma once

#include "tarn/Counted.h"
#include "tarn/export.h"
#include "tarn/LightweightString.h"
#include "tarn/Ptr.h"

#include <utility>

/// A counted value that travels with a message.
template <class T>
class TARN_API WrappedData : public Tarn::Counted {
public:
    /// Takes the value over.
    explicit WrappedData(T data) : data_{std::move(data)} {}
    /// The value, good while anybody holds this.
    [[nodiscard]] const T& data() const noexcept { return data_; }

private:
    T data_;
};

/// What a listener gets: a text, or a counted payload, or nothing.
class TARN_API NotifyMsg {
public:
    /// A message with nothing in it.
    NotifyMsg() = default;
    /// A message with a text.
    explicit NotifyMsg(LightweightString<char> text) : text_{std::move(text)} {}
    /// A message with a payload, which it holds.
    explicit NotifyMsg(Tarn::Ptr<Tarn::Counted> payload) : payload_{std::move(payload)} {}

    /// The text, "" when the message carries none; never null. Good while the message lives.
    [[nodiscard]] const char* text() const noexcept { return text_.c_str(); }
    /// The payload when it is a T, else null. The message keeps it alive.
    template <class T>
    [[nodiscard]] const T* payload() const noexcept {
        return dynamic_cast<const T*>(payload_.get());
    }

private:
    LightweightString<char> text_;
    Tarn::Ptr<Tarn::Counted> payload_;
};
