#include "platform/radios/bluez/Link.h"

#include <InkoraKit/platform/RunLoop.h>

#include "platform/radios/bluez/BluezErrors.h"

#include <utility>

namespace InkoraKit {
namespace {

// BlueZ itself gives up on a silent pen after 42 s, and on its services after 30 s (5.66). The rest
// of the time is for what BlueZ never answers.
constexpr double attemptTime = 80;
// BlueZ waits 2 s before it closes a link.
constexpr double closingTime = 10;

// A link request can be lost on the air, and a link in its first moments (0x3e, connection failed
// to be established): it is asked for again. A pen that stayed silent for long is not there.
constexpr int retries = 3;
constexpr double retryPause = 0.25;
constexpr double quickFailure = 10;
// Somebody else is connecting to the pen: the property Connected will tell, or the next try.
constexpr double busyPause = 1;

// When the adapter is switched off or bluetoothd ends, links and devices go first, 50 ms before it
// was seen. It is then for the state to tell it all, so the end of a link waits for that.
constexpr double reportPause = 0.2;

// ServicesResolved comes before the services' objects as often as after them, and also, after 30 s,
// when a pen does not answer and there will be none.
constexpr double secondLookPause = 1;

}  // namespace

Link::Link(const UUID& peripheral, std::string devicePath, BluezDaemon& daemon,
           RadioListener& listener, Owner& owner)
    : peripheral_(peripheral),
      devicePath_(std::move(devicePath)),
      daemon_(daemon),
      listener_(listener),
      owner_(owner) {}

bool Link::isAttempt() const {
    return stage_ == Stage::waiting || stage_ == Stage::connecting || stage_ == Stage::resolving;
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
    isConnectUnanswered_ = true;
    isSecondLook_ = false;
    connectSent_ = RunLoop::main().now();
    daemon_.call(
        devicePath_, ObjectTree::device, "Connect",
        [weak = weak_from_this(), request = ++request_](Answer& answer) {
            const auto self = weak.lock();
            if (self && self->request_ == request) self->connectAnswered(answer.error);
        },
        std::nullopt, attemptTime);
    move(Stage::connecting);
}

void Link::connectAnswered(const std::optional<BusError>& error) {
    isConnectUnanswered_ = false;
    if (!isAttempt()) return;
    if (device("Connected")) return deviceChanged();
    if (!error) return lostEarly();
    if (bluezErrors::isInProgress(*error)) return tryAgainAfter(busyPause);
    if (bluezErrors::isConnectAborted(*error) && mayRetry()) return tryAgainAfter(retryPause);
    fail(bluezErrors::textOf(*error));
}

void Link::lostEarly() {
    if (mayRetry()) return tryAgainAfter(retryPause);
    fail("The link was lost before its services were known.");
}

bool Link::mayRetry() {
    return RunLoop::main().now() - connectSent_ < quickFailure && retriesLeft_-- > 0;
}

void Link::tryAgainAfter(double pause) {
    pause_.set(pause, ifAlive(&Link::wait));
    wait();
}

void Link::wait() {
    move(Stage::waiting);
}

void Link::deviceChanged() {
    const bool isConnected = device("Connected");
    switch (stage_) {
        case Stage::connecting:
            if (!isConnected) return;
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
    if (daemon_.objects().below(devicePath_, ObjectTree::service).empty()) {
        if (std::exchange(isSecondLook_, true)) return giveUp("No services could be discovered.");
        return pause_.set(secondLookPause, ifAlive(&Link::deviceChanged));
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
    if (stage_ == Stage::waiting) return fail(text);
    close();
    listener_.connectionFailed(peripheral_, bluezErrors::connectionFailed(text));
}

void Link::fail(const std::string& text) {
    endWith([this, text] {
        listener_.connectionFailed(peripheral_, bluezErrors::connectionFailed(text));
    });
}

// --- the end ------------------------------------------------------------------------------------

void Link::lose() {
    wasUp_ = true;
    endWith([this] { listener_.disconnected(peripheral_, bluezErrors::peripheralDisconnected()); });
}

void Link::endWith(std::function<void()> report) {
    limit_.cancel();
    session_.reset();
    pause_.set(reportPause, [weak = weak_from_this(), report = std::move(report)] {
        const auto self = weak.lock();
        if (!self) return;
        self->move(Stage::ended);
        report();
    });
    move(Stage::lost);
}

void Link::deviceRemoved() {
    if (isAttempt()) return fail("The device is no longer known to BlueZ.");
    if (stage_ == Stage::up) return lose();
    if (stage_ == Stage::closing) closed();
}

void Link::disconnect() {
    connectAgain_ = false;
    if (stage_ == Stage::closing || stage_ == Stage::ended) return;
    if (stage_ == Stage::waiting || stage_ == Stage::lost) return closed();
    close();
}

void Link::close() {
    wasUp_ = stage_ == Stage::up;
    pause_.cancel();
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
    const bool hasAsked = stage_ == Stage::connecting || stage_ == Stage::resolving;
    if (hasAsked || stage_ == Stage::up)
        daemon_.send(devicePath_, ObjectTree::device, "Disconnect");
}

}  // namespace InkoraKit
