#include "platform/radios/bluez/BluezDaemon.h"

#include <InkoraKit/platform/NSObject.h>

#include "platform/radios/bluez/BluezErrors.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* bluez = "org.bluez";
constexpr const char* theBus = "org.freedesktop.DBus";
constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

// How long bluetoothd may need from its name to its adapters, or from its adapters to its end: half
// a second was seen under load.
constexpr double settlingTime = 3;
constexpr double reopeningPause = 2;
// The first question starts bluetoothd where the system does that on demand. Where it is to be
// started but ends again, for want of an adapter, the bus would let us wait for 25 seconds. One
// that is silent for so long is asked again, and again.
constexpr double silence = 10;
// It is there but has refused to tell its objects: it may have only just begun.
constexpr double refusalPause = 2;
// Whoever looks after bluetoothd may start it again; Debian's unit does not (no Restart=).
constexpr double startingPause = 5;

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
    askForObjects(true);
}

// The only place where rules are added, so their number is the same for ever.
void BluezDaemon::watch() {
    bus_->match(
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='org.bluez'",
        [this](MessageReader& signal) {
            if (signal.sender() == theBus) ownerChanged(signal);
        });
    bus_->match(
        "type='signal',sender='org.bluez',path='/',"
        "interface='org.freedesktop.DBus.ObjectManager'",
        [this](MessageReader& signal) {
            if (!isFromBluez(signal)) return;
            heard(signal);
            if (signal.member() == "InterfacesAdded") addInterfaces(signal);
            if (signal.member() == "InterfacesRemoved") removeInterfaces(signal);
        });
    bus_->match(
        "type='signal',sender='org.bluez',path_namespace='/org/bluez',"
        "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged'",
        [this](MessageReader& signal) {
            if (!isFromBluez(signal)) return;
            heard(signal);
            changeProperties(signal.path(), signal);
        });
}

bool BluezDaemon::isFromBluez(const MessageReader& signal) const {
    return presence_ == Presence::present && signal.sender() == owner_;
}

void BluezDaemon::askForObjects(bool startsService) {
    MethodCall call{bluez, "/", objectManager, "GetManagedObjects"};
    call.startsService = startsService;
    bus_->call(call, [this, owners = owners_](Answer& answer) {
        if (owners == owners_ && presence_ != Presence::present) objectsCame(answer);
    });
    asking_.set(silence, [this] {
        askForObjects(false);
        if (presence_ == Presence::unknown) become(Presence::absent);
    });
}

void BluezDaemon::askAgainAfter(double pause, bool startsService) {
    asking_.set(pause, [this, startsService] { askForObjects(startsService); });
}

void BluezDaemon::objectsCame(Answer& answer) {
    if (answer.error) return refused(*answer.error);
    asking_.cancel();
    owner_ = answer.body.sender();
    objects_.replace(answer.body.readObjects());
    become(Presence::present);
}

// Where nobody has the name there is nothing to ask: the bus will tell when somebody takes it.
void BluezDaemon::refused(const BusError& error) {
    asking_.cancel();
    NSObject::printThisLineToConsole([&] { return "BlueZ: " + bluezErrors::textOf(error); });
    if (bluezErrors::isAccessDenied(error)) return become(Presence::denied);
    if (!bluezErrors::isNobody(error)) askAgainAfter(refusalPause, false);
    if (presence_ == Presence::unknown) become(Presence::absent);
}

void BluezDaemon::ownerChanged(MessageReader& signal) {
    signal.readText();  // the name
    const std::string oldOwner = signal.readText();
    owner_ = signal.readText();
    ++owners_;
    if (owner_.empty()) {
        settling_.cancel();
        askAgainAfter(startingPause, true);
    } else {
        settle();
        askForObjects(false);
    }
    if (oldOwner.empty() || presence_ != Presence::present) return;
    objects_.clear();
    become(Presence::lost);
}

void BluezDaemon::settle() {
    settling_.set(settlingTime, [this] { observer_.presenceChanged(); });
}

// A bus that was never of use is taken for none. One that was comes back in time: on a desktop it
// lives as long as the system, but in a container it may be restarted below us.
void BluezDaemon::busLost(int error) {
    bus_.reset();
    objects_.clear();
    owner_.clear();
    asking_.cancel();
    settling_.cancel();
    if (presence_ == Presence::unknown) {
        const bool isDenied = error == EACCES || error == EPERM;
        return become(isDenied ? Presence::denied : Presence::noBus);
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
               [this, owners = owners_, done = std::move(done)](Answer& answer) {
                   heard(answer.body);
                   if (!answer.error && owners == owners_)
                       objects_.replace(answer.body.readObjects());
                   done();
               });
}

void BluezDaemon::forgetSignalStrengths() {
    objects_.forget(ObjectTree::device, "RSSI");
}

void BluezDaemon::call(const std::string& path, const char* interface, const char* member,
                       Completion completion, Arguments arguments, double timeout) {
    if (!bus_) return;
    bus_->call({bluez, path, interface, member, std::move(arguments), timeout},
               [this, completion = std::move(completion)](Answer& answer) {
                   heard(answer.body);
                   completion(answer);
               });
}

void BluezDaemon::ping(Completion completion) {
    call("/", "org.freedesktop.DBus.Peer", "Ping", std::move(completion), {}, 1);
}

// Errors of the bus itself, and of time-outs, are not bluetoothd's.
void BluezDaemon::heard(const MessageReader& message) {
    if (message.sender().starts_with(':')) observer_.messageHeard(message.serial());
}

void BluezDaemon::send(const std::string& path, const char* interface, const char* member,
                       Arguments arguments) {
    if (bus_) bus_->send({bluez, path, interface, member, std::move(arguments)});
}

void BluezDaemon::flush() {
    if (bus_) bus_->flush();
}

}  // namespace InkoraKit
