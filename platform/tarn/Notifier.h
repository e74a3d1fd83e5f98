#pragma once

#include "tarn/export.h"
#include "tarn/Guard.h"
#include "tarn/MethodCallback.h"
#include "tarn/NotifyMsg.h"
#include "tarn/Ptr.h"

#include <memory>

/// The interface of a source of notifications.
class TARN_API NotifierBase {
public:
    virtual ~NotifierBase();
    /// Calls every listener of the message type, on this thread, before it returns.
    virtual void issueNotification(const NotifyMsg& msg, int type) = 0;
    /// Registers a listener for a message type. The caller holds the guard; dropping it
    /// deregisters. An empty listener is not registered and gives null.
    [[nodiscard]] virtual Tarn::Ptr<Tarn::Guard> registerInterest(NotifyCallback listener,
                                                                  int type) = 0;
};

/// A source of notifications with its list of listeners.
///
/// Listeners are called in the order of registration. During a round, a listener that registers
/// waits for the next round; one that deregisters before its turn is not called; a listener may
/// drop its own guard or destroy the notifier, which ends the round. Rounds nest: where a listener
/// issues a message of the same type, those who have not been told of the first one yet are told of
/// it before anybody hears of the second, so everybody hears messages in their order. A listener
/// that throws keeps the message from nobody; the first exception passes through to the issuer
/// when all have been told. One thread at a time. What nobody is registered for need not be
/// issued, and may be issued without its text: whoever overrides `issueNotification` sees it so.
class TARN_API Notifier : public NotifierBase {
public:
    Notifier();
    ~Notifier() override;
    Notifier(const Notifier&) = delete;
    Notifier& operator=(const Notifier&) = delete;

    void issueNotification(const NotifyMsg& msg, int type) override;
    [[nodiscard]] Tarn::Ptr<Tarn::Guard> registerInterest(NotifyCallback listener,
                                                          int type) override;
    /// Whether anybody listens to a message type: lets a source save making the message.
    [[nodiscard]] bool hasListeners(int type) const noexcept;
    /// Tells every listener that still waits for its turn in a round of a message type, before the
    /// caller, who is a listener of that round or called by one, goes on. Whoever is about to act
    /// upon what all listeners should know by then does this first.
    void tellTheRest(int type);

    /// The list of registrations, shared with the guards; for the implementation alone.
    struct Registry;

private:
    std::shared_ptr<Registry> registry_;
};
