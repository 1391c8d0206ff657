#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/BluezDaemon.h"
#include "platform/radios/bluez/GattSession.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace InkoraKit {

/// One peripheral's way from `connect` to the end of its link.
///
///     searching ─► waiting ─► connecting ─► resolving ─► up ─► closing ─► ended
///         ▲           ▲            └────────────┴────────┴──► lost ──────────┘
///         │           └─ for another try, or a connect asked for while closing
///         └─ whenever BlueZ does not know the device
///
/// The device's properties decide, not the answers to calls: BlueZ answers some late, some never (a
/// Connect whose device vanishes) and some without the signal that belongs to it (5.66).
class Link : public std::enable_shared_from_this<Link> {
public:
    enum class Stage {
        searching,   // for the device, which a discovery has to find
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
        /// Where BlueZ has the peripheral now; empty when it does not know it.
        virtual std::string deviceOf(const UUID& peripheral) const = 0;

    protected:
        ~Owner() = default;
    };

    Link(const UUID& peripheral, BluezDaemon& daemon, RadioListener& listener, Owner& owner);

    void connect();
    void disconnect();

    /// No discovery of ours goes on now, so a link that waits can go on.
    void proceed();

    /// BlueZ has told of the device for the first time, or again.
    void deviceAdded();
    void deviceChanged();
    void deviceRemoved();

    /// The adapter was seen at work after a link was lost, so its power was not the cause, and the
    /// loss is told without waiting for that any longer.
    void adapterIsOn();

    /// The end of the radio: leaves no link and no attempt behind, and waits for nothing.
    void hangUp();

    Stage stage() const { return stage_; }
    /// On the way to a link.
    bool isAttempt() const;
    bool isSearching() const { return stage_ == Stage::searching; }
    /// An attempt that a discovery of ours would hold up.
    bool isConnecting() const { return isAttempt() && !isSearching(); }
    /// An established link was lost, and that is not reported yet.
    bool isLoss() const { return stage_ == Stage::lost && wasUp_; }
    const UUID& peripheral() const { return peripheral_; }
    const std::string& devicePath() const { return devicePath_; }

    /// Null unless the link is up.
    const std::shared_ptr<GattSession>& session() const { return session_; }

private:
    void begin();
    void connectAnswered(const std::optional<BusError>& error);
    void lookForLink();
    void linkLookedFor();
    void lostEarly();
    void tryAgainAfter(double pause);
    void wait();
    void release();
    void lookUpServices();
    void servicesLookedUp();
    void timeIsUp();
    void giveUp(const std::string& text);
    void fail(const std::string& text);
    void lose();
    void endWith(std::function<void()> report);
    void end();
    void close();
    void closed();
    void move(Stage stage);
    bool device(const char* property) const;
    template <class Function>
    std::function<void()> ifAlive(Function function);

    const UUID peripheral_;
    std::string devicePath_;  // empty as long as BlueZ does not know the device
    BluezDaemon& daemon_;
    RadioListener& listener_;
    Owner& owner_;

    Stage stage_ = Stage::ended;
    unsigned request_ = 0;  // the present Connect or Disconnect; answers to older ones are ignored
    bool mayBeLinked_ = false;  // Connect was sent, and nothing since that would have undone it
    bool isConnectUnanswered_ = false;
    bool wasLinked_ = false;  // since Connect was sent
    double linkedSince_ = 0;
    int retriesLeft_ = 0;
    int looks_ = 0;  // for what BlueZ should have by now
    bool isLookingUp_ = false;
    bool wasUp_ = false;         // so that the end of the closing is reported
    bool connectAgain_ = false;  // when closed
    Alarm limit_;
    Alarm pause_;
    std::function<void()> report_;  // of a loss or failure, after a pause
    std::shared_ptr<GattSession> session_;
};

}  // namespace InkoraKit
