#pragma once

#include "tarn/NotifyMsg.h"

#include <functional>
#include <utility>

/// A listener: anything that takes a message and returns an int, which nobody reads.
using NotifyCallback = std::function<int(const NotifyMsg&)>;

/// Wraps a member function of an object, which must outlive the registration.
template <class T>
class MethodCallback {
public:
    /// The member function.
    using Method = int (T::*)(const NotifyMsg&);
    /// Neither is owned, neither null.
    MethodCallback(T* object, Method method) noexcept : object_{object}, method_{method} {}
    /// Calls the member function.
    int operator()(const NotifyMsg& msg) const { return (object_->*method_)(msg); }

private:
    T* object_;
    Method method_;
};
