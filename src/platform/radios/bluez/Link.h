#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/radios/bluez/Alarm.h"
#include "platform/radios/bluez/BluezDaemon.h"
#include "platform/radios/bluez/GattSession.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace InkoraKit {

/// One peripheral's way from `connect` to the end of its link.
///
///     waiting ─► connecting ─► resolving ─► up ─► closing ─► ended
///        ▲            └────────────┴────────┴──► lost ──────────┘
///        └─ for another try, or a connect asked for while closing
///
/// The device's properties decide, not the answers to calls: BlueZ answers some late and some never
/// (a Connect whose device vanishes, 5.66).
class Link : public std::enable_shared_from_this<Link> {
public:
    enum class Stage {
        waiting,     // for our discovery to stop, or for a moment before the next try
        connecting,  // Connect was sent
        resolving,   // connected; the services are not known yet
        up,
        closing,  // Disconnect was sent
        lost,     // over; about to be reported
        ended,
    };

    class Owner {
    public:
        /// The stage has changed, or a link that waits may `proceed` now.
        virtual void linkMoved(Link& link) = 0;

    protected:
        ~Owner() = default;
    };

    Link(const UUID& peripheral, std::string devicePath, BluezDaemon& daemon,
         RadioListener& listener, Owner& owner);

    void connect();
    void disconnect();

    /// No discovery of ours goes on now, so a link that waits can go on.
    void proceed();

    void deviceChanged();
    void deviceRemoved();

    /// The end of the radio: leaves no link and no attempt behind, and waits for nothing.
    void hangUp();

    Stage stage() const { return stage_; }
    bool isAttempt() const;
    const std::string& devicePath() const { return devicePath_; }

    /// Null unless the link is up.
    const std::shared_ptr<GattSession>& session() const { return session_; }

private:
    void begin();
    void connectAnswered(const std::optional<BusError>& error);
    void lostEarly();
    bool mayRetry();
    void tryAgainAfter(double pause);
    void wait();
    void lookUpServices();
    void servicesLookedUp();
    void timeIsUp();
    void giveUp(const std::string& text);
    void fail(const std::string& text);
    void lose();
    void endWith(std::function<void()> report);
    void close();
    void closed();
    void move(Stage stage);
    bool device(const char* property) const;
    template <class Function>
    std::function<void()> ifAlive(Function function);

    const UUID peripheral_;
    const std::string devicePath_;
    BluezDaemon& daemon_;
    RadioListener& listener_;
    Owner& owner_;

    Stage stage_ = Stage::ended;
    unsigned request_ = 0;  // the present Connect or Disconnect; answers to older ones are ignored
    bool isConnectUnanswered_ = false;
    double connectSent_ = 0;
    int retriesLeft_ = 0;
    bool isLookingUp_ = false;
    bool isSecondLook_ = false;
    bool wasUp_ = false;         // so that the end of the closing is reported
    bool connectAgain_ = false;  // when closed
    Alarm limit_;
    Alarm pause_;
    std::shared_ptr<GattSession> session_;
};

}  // namespace InkoraKit
