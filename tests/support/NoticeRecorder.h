#pragma once

// Writes down every notice of the watched notifiers as text, in the order in which they arrive over
// all of them. A test compares the whole; a notice that no test looked at fails at the end.

#include "tarn/Cookie.h"
#include "tarn/Notifier.h"
#include "tarn/NotifyMsgTypeDictionary.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class NoticeRecorder {
public:
    /// Called inside the notice, after it was written down.
    using Reaction = std::function<void()>;

    NoticeRecorder() = default;
    explicit NoticeRecorder(Notifier& notifier) { watch(notifier); }
    NoticeRecorder(const NoticeRecorder&) = delete;
    NoticeRecorder& operator=(const NoticeRecorder&) = delete;
    ~NoticeRecorder() { EXPECT_EQ(notices_, "") << "notices that no test looked at"; }

    void watch(Notifier& notifier, const std::string& name = "", Reaction reaction = {}) {
        for (const char* const type :
             {"recordsDeleted", "recordsChanged", "StartBatch", "EndBatch"}) {
            listen(notifier, name, type, reaction);
        }
    }
    /// Ends what `watch` began under that name.
    void leave(const std::string& name) {
        std::erase_if(guards_, [&](const auto& guard) { return guard.first == name; });
    }
    /// Everything since the last call: "[name] type {text}" each, joined by one blank.
    std::string taken() { return std::exchange(notices_, std::string{}); }

private:
    void listen(Notifier& notifier, const std::string& name, const char* type,
                const Reaction& reaction) {
        const auto note = [this, name, type, reaction](const NotifyMsg& msg) {
            notices_ += notices_.empty() ? "" : " ";
            notices_ += (name.empty() ? "" : name + " ") + type + " {" + body(msg) + "}";
            if (reaction) {
                reaction();
            }
            return 0;
        };
        guards_.emplace_back(
            name, notifier.registerInterest(note, NotifyMsgTypeDictionary::intern(type)));
    }
    /// The text of a message, or the cookies of its payload.
    static std::string body(const NotifyMsg& msg) {
        std::string text = msg.text();
        if (const auto* const cookies = msg.payload<WrappedData<CookieVec>>()) {
            for (const Cookie& cookie : cookies->data()) {
                text += (text.empty() ? "" : " ") + std::string{cookie.asString(false).c_str()};
            }
        }
        return text;
    }

    std::string notices_;
    std::vector<std::pair<std::string, Tarn::Ptr<Tarn::Guard>>> guards_;
};
