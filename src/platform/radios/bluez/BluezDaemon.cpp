#include "platform/radios/bluez/BluezDaemon.h"

#include "platform/radios/bluez/BluezErrors.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* bluez = "org.bluez";
constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

// How long bluetoothd may need from its name to its adapters, or from its adapters to its end: half
// a second was seen under load.
constexpr double settlingTime = 3;
constexpr double reopeningPause = 2;
// The first call starts bluetoothd where the system does that on demand. Where it is to be started
// but ends again, for want of an adapter, the bus would let us wait for 25 seconds.
constexpr double firstAnswerTime = 10;

}  // namespace

void BluezDaemon::start() {
    open();
}

void BluezDaemon::open() {
    try {
        bus_ = std::make_unique<Bus>([this](int error) { busLost(error); });
    } catch (const std::system_error& error) {
        return busLost(error.code().value());
    }
    // The rules first: what changes after the objects were told is then told too. What was told
    // before them is in them.
    watch();
    askForObjects();
}

// The only place where rules are added, so their number is the same for ever.
void BluezDaemon::watch() {
    bus_->match(
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='org.bluez'",
        [this](MessageReader& signal) { ownerChanged(signal); });
    bus_->match(
        "type='signal',sender='org.bluez',path='/',"
        "interface='org.freedesktop.DBus.ObjectManager'",
        [this](MessageReader& signal) {
            if (presence_ != Presence::present) return;
            heard(signal);
            const std::string member = signal.member();
            if (member == "InterfacesAdded") addInterfaces(signal);
            if (member == "InterfacesRemoved") removeInterfaces(signal);
        });
    bus_->match(
        "type='signal',sender='org.bluez',path_namespace='/org/bluez',"
        "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged'",
        [this](MessageReader& signal) {
            if (presence_ != Presence::present) return;
            heard(signal);
            changeProperties(signal.path(), signal);
        });
}

void BluezDaemon::askForObjects() {
    MethodCall call{bluez, "/", objectManager, "GetManagedObjects"};
    call.startsService = presence_ == Presence::unknown;
    call.timeout = firstAnswerTime;
    bus_->call(call, [this](Answer& answer) { objectsCame(answer); });
}

void BluezDaemon::objectsCame(Answer& answer) {
    if (!answer.error) {
        objects_.replace(answer.body.readObjects());
        return become(Presence::present);
    }
    if (bluezErrors::isAccessDenied(*answer.error)) return become(Presence::denied);
    if (presence_ == Presence::unknown) become(Presence::absent);
}

void BluezDaemon::ownerChanged(MessageReader& signal) {
    signal.readText();  // the name
    const std::string oldOwner = signal.readText();
    const std::string newOwner = signal.readText();
    if (!oldOwner.empty() && presence_ == Presence::present) {
        objects_.clear();
        become(Presence::lost);
    }
    if (newOwner.empty()) return settling_.cancel();
    settle();
    askForObjects();
}

void BluezDaemon::settle() {
    settling_.set(settlingTime, [this] { observer_.presenceChanged(); });
}

// A bus that was never of use is taken for none. One that was comes back in time: on a desktop it
// lives as long as the system, but in a container it may be restarted below us.
void BluezDaemon::busLost(int error) {
    bus_.reset();
    objects_.clear();
    settling_.cancel();
    if (presence_ == Presence::unknown) {
        const bool isDenied = error == EACCES || error == EPERM;
        return become(isDenied ? Presence::denied : Presence::absent);
    }
    reopening_.set(reopeningPause, [this] { open(); });
    if (presence_ == Presence::present) become(Presence::lost);
}

void BluezDaemon::become(Presence presence) {
    presence_ = presence;
    observer_.presenceChanged();
}

void BluezDaemon::addInterfaces(MessageReader& signal) {
    const std::string path = signal.readText();
    for (auto& [interface, properties] : signal.readInterfaces()) {
        objects_.add(path, interface, properties);
        observer_.interfaceAdded(path, interface);
    }
}

void BluezDaemon::removeInterfaces(MessageReader& signal) {
    const std::string path = signal.readText();
    for (const std::string& interface : signal.readTexts()) {
        objects_.remove(path, interface);
        if (interface == ObjectTree::adapter) settle();
        observer_.interfaceRemoved(path, interface);
    }
}

void BluezDaemon::changeProperties(const std::string& path, MessageReader& signal) {
    const std::string interface = signal.readText();
    Properties changed = signal.readProperties();
    const Properties before =
        objects_.change(path, interface, std::move(changed), signal.readTexts());
    if (!before.empty()) observer_.propertiesChanged(path, interface, before);
}

void BluezDaemon::refresh(std::function<void()> done) {
    if (!bus_) return;
    bus_->call({bluez, "/", objectManager, "GetManagedObjects"},
               [this, done = std::move(done)](Answer& answer) {
                   heard(answer.body);
                   if (!answer.error) objects_.replace(answer.body.readObjects());
                   done();
               });
}

void BluezDaemon::forgetSignalStrengths() {
    objects_.forget(ObjectTree::device, "RSSI");
}

void BluezDaemon::call(const std::string& path, const char* interface, const char* member,
                       Completion completion, std::optional<Options> options, double timeout) {
    if (!bus_) return;
    bus_->call({bluez, path, interface, member, std::move(options), timeout},
               [this, completion = std::move(completion)](Answer& answer) {
                   heard(answer.body);
                   completion(answer);
               });
}

void BluezDaemon::ping(Completion completion) {
    call("/", "org.freedesktop.DBus.Peer", "Ping", std::move(completion), std::nullopt, 1);
}

// Errors of the bus itself, and of time-outs, are not bluetoothd's.
void BluezDaemon::heard(const MessageReader& message) {
    if (message.sender().starts_with(':')) observer_.messageHeard(message.serial());
}

void BluezDaemon::send(const std::string& path, const char* interface, const char* member) {
    if (bus_) bus_->send({bluez, path, interface, member});
}

void BluezDaemon::flush() {
    if (bus_) bus_->flush();
}

}  // namespace InkoraKit
