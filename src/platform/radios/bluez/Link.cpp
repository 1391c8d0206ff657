#include "platform/radios/bluez/Link.h"

#include <InkoraKit/platform/RunLoop.h>

#include "platform/radios/bluez/BluezErrors.h"

#include <utility>

namespace InkoraKit {
namespace {

// BlueZ itself gives up on a silent pen after 42 s, and on its services after 30 s (5.66). The rest
// of the time is for what BlueZ never answers, and for another try.
constexpr double attemptTime = 80;
// BlueZ waits 2 s before it closes a link.
constexpr double closingTime = 10;

// A link request can be lost on the air, and a link in its first moments (0x3e, connection failed
// to be established): it is asked for again.
constexpr int retries = 9;
constexpr double connectPause = 0.25;
// Somebody else is connecting to the pen: the property Connected will tell, or the next try.
constexpr double busyPause = 1;

// Connect was answered, and there is no link to be seen: BlueZ may have one of which it has not
// told, so its objects are asked for.
constexpr int linkLooks = 5;
constexpr double linkPause = 1;

// ServicesResolved comes before the services' objects as often as after them, and also when there
// will be none: when a pen has not answered for 30 s (Bluetooth Core Specification, Vol 3, Part F,
// 3.3.3). Services that BlueZ remembers from an earlier link are then no sign of life either.
constexpr int serviceLooks = 8;
constexpr double servicePause = 0.25;
constexpr double stalledTime = 29;

// When the adapter is switched off or bluetoothd ends, links and devices go first, 50 ms before it
// was seen. It is then for the state to tell it all, so the end of a link waits for that, unless
// the adapter shows before that it is on.
constexpr double reportPause = 0.2;

}  // namespace

Link::Link(const UUID& peripheral, BluezDaemon& daemon, RadioListener& listener, Owner& owner)
    : peripheral_(peripheral), daemon_(daemon), listener_(listener), owner_(owner) {}

bool Link::isAttempt() const {
    return stage_ == Stage::searching || stage_ == Stage::waiting || stage_ == Stage::connecting ||
           stage_ == Stage::resolving;
}

bool Link::device(const char* property) const {
    const bool* value = daemon_.objects().property<bool>(devicePath_, ObjectTree::device, property);
    return value && *value;
}

void Link::move(Stage stage) {
    stage_ = stage;
    owner_.linkMoved(*this);
}

template <class Function>
std::function<void()> Link::ifAlive(Function function) {
    return [weak = weak_from_this(), function] {
        if (const auto self = weak.lock()) ((*self).*function)();
    };
}

// --- connecting ---------------------------------------------------------------------------------

void Link::connect() {
    if (stage_ == Stage::ended) begin();
    if (stage_ == Stage::closing) connectAgain_ = true;
}

void Link::begin() {
    retriesLeft_ = retries;
    limit_.set(attemptTime, ifAlive(&Link::timeIsUp));
    wait();
}

void Link::proceed() {
    if (stage_ != Stage::waiting || pause_.isSet()) return;
    mayBeLinked_ = true;
    isConnectUnanswered_ = true;
    wasLinked_ = false;
    looks_ = 0;
    daemon_.call(
        devicePath_, ObjectTree::device, "Connect",
        [weak = weak_from_this(), request = ++request_](Answer& answer) {
            const auto self = weak.lock();
            if (self && self->request_ == request) self->connectAnswered(answer.error);
        },
        {}, attemptTime);
    move(Stage::connecting);
}

void Link::connectAnswered(const std::optional<BusError>& error) {
    isConnectUnanswered_ = false;
    if (device("Connected")) return deviceChanged();
    if (!error) return wasLinked_ ? lostEarly() : lookForLink();
    switch (bluezErrors::connectFailureOf(*error)) {
        case ConnectFailure::none:
            return lookForLink();
        case ConnectFailure::busy:
            return tryAgainAfter(busyPause);
        case ConnectFailure::transient:
            if (retriesLeft_-- > 0) return tryAgainAfter(connectPause);
            break;
        case ConnectFailure::permanent:
            break;
    }
    fail(bluezErrors::textOf(*error));
}

void Link::lookForLink() {
    daemon_.refresh(ifAlive(&Link::linkLookedFor));
}

void Link::linkLookedFor() {
    if (stage_ != Stage::connecting || isConnectUnanswered_) return;
    if (device("Connected")) return deviceChanged();
    if (++looks_ < linkLooks) return pause_.set(linkPause, ifAlive(&Link::lookForLink));
    release();
    lostEarly();
}

void Link::lostEarly() {
    if (retriesLeft_-- > 0) return tryAgainAfter(connectPause);
    fail("The link was lost before its services were known.");
}

void Link::tryAgainAfter(double pause) {
    pause_.set(pause, ifAlive(&Link::wait));
    wait();
}

void Link::wait() {
    devicePath_ = owner_.deviceOf(peripheral_);
    move(devicePath_.empty() ? Stage::searching : Stage::waiting);
}

void Link::deviceAdded() {
    if (stage_ == Stage::searching) wait();
}

void Link::deviceChanged() {
    const bool isConnected = device("Connected");
    switch (stage_) {
        case Stage::connecting:
            if (!isConnected) return;
            pause_.cancel();
            looks_ = 0;
            wasLinked_ = true;
            linkedSince_ = RunLoop::main().now();
            move(Stage::resolving);
            [[fallthrough]];
        case Stage::resolving:
            if (isConnected && device("ServicesResolved")) return lookUpServices();
            if (isConnected) return;
            if (isConnectUnanswered_) return move(Stage::connecting);  // the answer says why
            return lostEarly();
        case Stage::up:
            if (!isConnected) lose();
            return;
        case Stage::closing:
            if (!isConnected) closed();
            return;
        case Stage::searching:
        case Stage::waiting:
        case Stage::lost:
        case Stage::ended:
            return;
    }
}

void Link::lookUpServices() {
    if (std::exchange(isLookingUp_, true)) return;
    daemon_.refresh(ifAlive(&Link::servicesLookedUp));
}

void Link::servicesLookedUp() {
    isLookingUp_ = false;
    if (stage_ != Stage::resolving) return;
    if (!device("Connected") || !device("ServicesResolved")) return deviceChanged();
    if (RunLoop::main().now() - linkedSince_ > stalledTime)
        return giveUp("The peripheral does not answer.");
    if (daemon_.objects().below(devicePath_, ObjectTree::service).empty()) {
        if (++looks_ > serviceLooks) return giveUp("No services could be discovered.");
        return pause_.set(servicePause, ifAlive(&Link::deviceChanged));
    }
    limit_.cancel();
    session_ = std::make_shared<GattSession>(peripheral_, devicePath_, daemon_, listener_);
    move(Stage::up);
    listener_.connected(peripheral_);
}

void Link::timeIsUp() {
    giveUp("The connection could not be established in time.");
}

// Of our own accord: BlueZ still goes on with what it was asked for.
void Link::giveUp(const std::string& text) {
    if (stage_ == Stage::searching || stage_ == Stage::waiting) return fail(text);
    close();
    listener_.connectionFailed(peripheral_, bluezErrors::connectionFailed(text));
}

void Link::fail(const std::string& text) {
    release();
    endWith([this, text] {
        listener_.connectionFailed(peripheral_, bluezErrors::connectionFailed(text));
    });
}

// Whatever BlueZ still makes of the request: a pen that stays linked could not be found again.
void Link::release() {
    if (std::exchange(mayBeLinked_, false) && !devicePath_.empty())
        daemon_.send(devicePath_, ObjectTree::device, "Disconnect");
}

// --- the end ------------------------------------------------------------------------------------

void Link::lose() {
    wasUp_ = true;
    mayBeLinked_ = false;
    endWith([this] { listener_.disconnected(peripheral_, bluezErrors::peripheralDisconnected()); });
}

void Link::endWith(std::function<void()> report) {
    limit_.cancel();
    session_.reset();
    ++request_;
    report_ = std::move(report);
    pause_.set(reportPause, ifAlive(&Link::end));
    move(Stage::lost);
}

void Link::end() {
    pause_.cancel();
    wasUp_ = false;
    const auto report = std::exchange(report_, nullptr);
    move(Stage::ended);
    report();
}

void Link::adapterIsOn() {
    if (stage_ == Stage::lost) end();
}

void Link::deviceRemoved() {
    if (isAttempt()) {
        ++request_;
        mayBeLinked_ = false;
        return wait();
    }
    if (stage_ == Stage::up) return lose();
    if (stage_ == Stage::closing) closed();
}

void Link::disconnect() {
    connectAgain_ = false;
    if (stage_ == Stage::closing || stage_ == Stage::ended) return;
    if (stage_ == Stage::connecting || stage_ == Stage::resolving || stage_ == Stage::up)
        return close();
    release();
    closed();
}

void Link::close() {
    wasUp_ = stage_ == Stage::up;
    pause_.cancel();
    mayBeLinked_ = false;
    session_.reset();
    limit_.set(closingTime, ifAlive(&Link::closed));
    daemon_.call(devicePath_, ObjectTree::device, "Disconnect",
                 [weak = weak_from_this(), request = ++request_](Answer&) {
                     const auto self = weak.lock();
                     if (!self || self->request_ != request) return;
                     // Of an established link the answer comes first, Connected right after it.
                     if (!self->device("Connected")) self->closed();
                 });
    move(Stage::closing);
}

void Link::closed() {
    limit_.cancel();
    pause_.cancel();
    ++request_;
    const bool wasUp = std::exchange(wasUp_, false);
    if (std::exchange(connectAgain_, false)) {
        begin();
    } else {
        move(Stage::ended);
    }
    if (wasUp) listener_.disconnected(peripheral_, std::nullopt);
}

void Link::hangUp() {
    if (session_) session_->hangUp();
    release();
}

}  // namespace InkoraKit
