#include "peripheral/bluez/BluezPen.h"

#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/RunLoop.h>

#include "platform/radios/bluez/BluezErrors.h"
#include "platform/radios/bluez/RadioSwitch.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* bluezRoot = "/org/bluez";
constexpr const char* advertisingManager = "org.bluez.LEAdvertisingManager1";
constexpr const char* gattManager = "org.bluez.GattManager1";
constexpr const char* advertisementInterface = "org.bluez.LEAdvertisement1";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

constexpr const char* rootPath = "/inkora/pen";
constexpr const char* servicePath = "/inkora/pen/service";
constexpr const char* advertisementPath = "/inkora/pen/advertisement";
constexpr std::array characteristicPaths = {"/inkora/pen/service/colour",
                                            "/inkora/pen/service/battery"};

// Seconds. An adapter's interfaces are told one by one; bluetoothd takes two to end a link.
constexpr double timeOfInterfaces = 0.1;
constexpr double pauseBeforeRetry = 2;
constexpr double longestEnd = 5;

std::string reasonText(CBManagerStateReason reason) {
    return std::string(description(reason));
}

std::string longUUID(std::string_view text) {
    return CBUUID(text).uuid().uuidString();
}

constexpr std::size_t indexOf(BluezPen::Characteristic characteristic) {
    return static_cast<std::size_t>(characteristic);
}

}  // namespace

// --- bluetoothd ---------------------------------------------------------------------------------

void BluezPen::presenceChanged() {
    using enum BluezDaemon::Presence;
    switch (daemon_.presence()) {
        case unknown:
            return;
        case present:
            return comeUp();
        case noBus:
            return tryAgain(reasonText(CBManagerStateReason::noBus));
        case denied:
            return tryAgain(reasonText(CBManagerStateReason::notPermitted));
        case absent:
        case lost:
            return tryAgain(reasonText(CBManagerStateReason::noService));
    }
}

void BluezPen::interfaceAdded(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::device) return deviceChanged(path);
    if (adapter_.empty() && nameOfObject(path).starts_with("hci"))
        retry_.set(timeOfInterfaces, [this] { comeUp(); });
}

void BluezPen::interfaceRemoved(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::device) return hostLeft(path);
    if (path != adapter_ || interface != ObjectTree::adapter) return;
    goDown();
    comeUp();
}

void BluezPen::propertiesChanged(const std::string& path, const std::string& interface,
                                 const Properties& before) {
    if (interface == ObjectTree::device && before.contains("Connected")) return deviceChanged(path);
    if (interface != ObjectTree::adapter || !before.contains("Powered")) return;
    if (path == adapter_) goDown();
    comeUp();
}

// --- up and down --------------------------------------------------------------------------------

// What keeps an adapter from being a pen; empty for nothing.
std::string BluezPen::obstacleOf(const std::string& adapter) const {
    const ObjectTree& objects = daemon_.objects();
    if (!objects.properties(adapter, ObjectTree::adapter))
        return "There is no adapter " + nameOfObject(adapter) + ".";
    if (!objects.isPowered(adapter)) {
        const bool isBlocked = radioBlockOf(adapter) != RadioBlock::none;
        return reasonText(isBlocked ? CBManagerStateReason::blocked
                                    : CBManagerStateReason::switchedOff);
    }
    if (objects.mayBe("peripheral", adapter) && objects.properties(adapter, advertisingManager) &&
        objects.properties(adapter, gattManager))
        return {};
    return "The adapter " + nameOfObject(adapter) + " cannot be a peripheral of Bluetooth LE.";
}

// Empty where there is none, because of what keeps the first from it.
std::string BluezPen::chooseAdapter(std::string& why) const {
    std::vector<std::string> adapters = daemon_.objects().below(bluezRoot, ObjectTree::adapter);
    if (!wantedAdapter_.empty()) adapters = {bluezRoot + ("/" + wantedAdapter_)};
    why = reasonText(CBManagerStateReason::noAdapter);
    for (const std::string& adapter : adapters) {
        const std::string obstacle = obstacleOf(adapter);
        if (obstacle.empty()) return adapter;
        if (adapter == adapters.front()) why = obstacle;
    }
    return {};
}

void BluezPen::comeUp() {
    if (!adapter_.empty() || done_ || daemon_.presence() != BluezDaemon::Presence::present) return;
    std::string why;
    const std::string adapter = chooseAdapter(why);
    if (adapter.empty()) {
        if (!daemon_.isSettling()) tryAgain(why);
        return;
    }
    retry_.cancel();
    adapter_ = adapter;
    ++ups_;
    exportObjects();
    takeName();
    daemon_.call(adapter_, gattManager, "RegisterApplication", whileUp([this](Answer& answer) {
                     if (answer.error) return refused(*answer.error);
                     isRegistered_ = true;
                     adjustAdvertisement();
                 }),
                 arguments(ObjectPath{rootPath}, Properties{}));
}

// bluetoothd, where it is still there, may keep for a later time what an adapter has no power for.
void BluezPen::goDown() {
    if (adapter_.empty()) return;
    if (daemon_.presence() == BluezDaemon::Presence::present) withdraw();
    adapter_.clear();
    isRegistered_ = false;
    isAdvertisementUnderWay_ = false;
    advertisedName_.reset();
    heldReads_.clear();
    objects_.reset();
    for (const std::string& host : std::exchange(hosts_, {}))
        listener_.disconnected(addressOf(host));
    valuesUnderWay_ = 0;
    listener_.hasRoom();
}

void BluezPen::withdraw() {
    daemon_.send(adapter_, advertisingManager, "UnregisterAdvertisement",
                 arguments(ObjectPath{advertisementPath}));
    daemon_.send(adapter_, gattManager, "UnregisterApplication", arguments(ObjectPath{rootPath}));
}

void BluezPen::tryAgain(const std::string& why) {
    goDown();
    if (done_) return ended();
    retry_.set(pauseBeforeRetry, [this] { comeUp(); });
    if (why != std::exchange(told_, why)) listener_.unavailable(why);
}

void BluezPen::refused(const BusError& error) {
    tryAgain(bluezErrors::isAccessDenied(error)
                 ? reasonText(CBManagerStateReason::notPermitted)
                 : "The adapter " + nameOfObject(adapter_) +
                       " does not become a pen: " + bluezErrors::textOf(error));
}

void BluezPen::end(std::function<void()> done) {
    done_ = std::move(done);
    retry_.cancel();
    ending_.set(longestEnd, [this] { ended(); });
    if (daemon_.presence() != BluezDaemon::Presence::present) return ended();
    if (hosts_.empty()) return letGo();
    // Nobody comes any more. What was notified leaves before the link ends, so that ends first.
    daemon_.send(adapter_, advertisingManager, "UnregisterAdvertisement",
                 arguments(ObjectPath{advertisementPath}));
    const auto left = std::make_shared<std::size_t>(hosts_.size());
    for (const std::string& host : hosts_)
        daemon_.call(host, ObjectTree::device, "Disconnect", [this, left](Answer&) {
            if (--*left == 0) letGo();
        });
}

void BluezPen::letGo() {
    if (!adapter_.empty()) withdraw();
    giveNamesBack();
}

void BluezPen::ended() {
    ending_.cancel();
    if (const auto done = std::exchange(done_, [] {})) done();
}

// --- what it shows ------------------------------------------------------------------------------

void BluezPen::exportObjects() {
    objects_ = std::make_unique<ExportedObjects>(daemon_.bus(), rootPath, daemon_.owner());
    objects_->set(servicePath, ObjectTree::service,
                  {{"UUID", longUUID(InkoraConstants::PeripheralServiceUuid)}, {"Primary", true}});
    exportCharacteristic(Characteristic::colour, InkoraConstants::PeripeheralCharactersticUuid);
    exportCharacteristic(Characteristic::battery,
                         InkoraConstants::PeripeheralCharactersticBatteryUuid);
    objects_->set(advertisementPath, advertisementInterface, "Release",
                  [this](const IncomingCall& call) {
                      call.answer();
                      advertisedName_.reset();
                      retry_.set(pauseBeforeRetry, [this] { adjustAdvertisement(); });
                  });
}

void BluezPen::exportCharacteristic(Characteristic characteristic, std::string_view uuid) {
    const std::string path = characteristicPaths[indexOf(characteristic)];
    objects_->set(path, ObjectTree::characteristic,
                  {{"UUID", longUUID(uuid)},
                   {"Service", ObjectPath{servicePath}},
                   {"Flags", std::vector<std::string>{"read", "notify"}}});
    objects_->set(path, ObjectTree::characteristic, "ReadValue",
                  [this, characteristic](const IncomingCall& call) { read(characteristic, call); });
    for (const bool isSubscribed : {true, false})
        objects_->set(path, ObjectTree::characteristic, isSubscribed ? "StartNotify" : "StopNotify",
                      [this, characteristic, isSubscribed](const IncomingCall& call) {
                          call.answer();
                          // A link's end is one of its subscriptions, too.
                          if (isSubscribed || !hosts_.empty())
                              listener_.subscribed(characteristic, isSubscribed);
                      });
}

template <class T>
const T* BluezPen::ofAdapter(const char* property) const {
    return daemon_.objects().property<T>(adapter_, ObjectTree::adapter, property);
}

// The adapter's alias is the name that hosts read from the pen itself.
void BluezPen::takeName() {
    if (const auto* alias = ofAdapter<std::string>("Alias")) aliases_.emplace(adapter_, *alias);
    setAlias(adapter_, name_, [](Answer&) {});
}

// An alias that is the system's own name for the adapter was none, and one that is the pen's name
// was left by a pen that could not end.
void BluezPen::giveNamesBack() {
    const auto left = std::make_shared<std::size_t>(aliases_.size());
    if (aliases_.empty()) return ended();
    for (const auto& [adapter, alias] : aliases_) {
        const auto* systemName =
            daemon_.objects().property<std::string>(adapter, ObjectTree::adapter, "Name");
        const bool wasNone = (systemName && *systemName == alias) || alias == name_;
        setAlias(adapter, wasNone ? "" : alias, [this, left](Answer&) {
            if (--*left == 0) ended();
        });
    }
}

void BluezPen::setAlias(const std::string& adapter, const std::string& alias,
                        Bus::Completion completion) {
    daemon_.call(adapter, propertiesInterface, "Set", std::move(completion),
                 arguments(std::string(ObjectTree::adapter), std::string("Alias"), Variant(alias)));
}

// Brings the advertisement to what it should be, a step at a time.
void BluezPen::adjustAdvertisement() {
    if (!isRegistered_ || isAdvertisementUnderWay_ || done_) return;
    const bool isWanted = isVisible_ && hosts_.empty();
    if (!advertisedName_ && isWanted) return advertise();
    if (!advertisedName_ || (isWanted && *advertisedName_ == name_)) return;
    isAdvertisementUnderWay_ = true;
    advertisedName_.reset();
    daemon_.call(adapter_, advertisingManager, "UnregisterAdvertisement", whileUp([this](Answer&) {
                     isAdvertisementUnderWay_ = false;
                     if (!isVisible_) listener_.hidden();
                     adjustAdvertisement();
                 }),
                 arguments(ObjectPath{advertisementPath}));
}

void BluezPen::advertise() {
    isAdvertisementUnderWay_ = true;
    objects_->set(advertisementPath, advertisementInterface,
                  {{"Type", std::string("peripheral")},
                   {"LocalName", name_},
                   {"ServiceUUIDs",
                    std::vector<std::string>{std::string(InkoraConstants::PeripheralServiceUuid)}},
                   // Some hosts leave out whoever does not say so.
                   {"Discoverable", true}});
    daemon_.call(adapter_, advertisingManager, "RegisterAdvertisement",
                 whileUp([this, name = name_](Answer& answer) {
                     isAdvertisementUnderWay_ = false;
                     if (answer.error) return refused(*answer.error);
                     advertisedName_ = name;
                     told_.clear();
                     const auto* address = ofAdapter<std::string>("Address");
                     listener_.advertising(name, nameOfObject(adapter_), address ? *address : "");
                     adjustAdvertisement();
                 }),
                 arguments(ObjectPath{advertisementPath}, Properties{}));
}

void BluezPen::setName(const std::string& name) {
    name_ = name;
    if (adapter_.empty()) return;
    takeName();
    adjustAdvertisement();
}

void BluezPen::setVisible(bool isVisible) {
    isVisible_ = isVisible;
    if (!isVisible && !advertisedName_ && !isAdvertisementUnderWay_) listener_.hidden();
    adjustAdvertisement();
}

// --- hosts --------------------------------------------------------------------------------------

// A device that gets a link while the pen is there is a host, unless it is paired with this machine
// for something else; it is one all the same when it reads.
void BluezPen::deviceChanged(const std::string& device) {
    if (adapter_.empty() || !device.starts_with(adapter_ + "/")) return;
    const ObjectTree& objects = daemon_.objects();
    const auto* isConnected = objects.property<bool>(device, ObjectTree::device, "Connected");
    const auto* isPaired = objects.property<bool>(device, ObjectTree::device, "Paired");
    if (!isConnected || !*isConnected) return hostLeft(device);
    if (!isPaired || !*isPaired) hostCame(device);
}

std::string BluezPen::addressOf(const std::string& device) const {
    std::string address = device.substr(std::min(device.size(), device.rfind("dev_") + 4));
    std::ranges::replace(address, '_', ':');
    return address;
}

void BluezPen::hostCame(const std::string& device) {
    if (!hosts_.insert(device).second) return;
    listener_.connected(addressOf(device));
    adjustAdvertisement();
}

void BluezPen::hostLeft(const std::string& device) {
    if (hosts_.erase(device) == 0) return;
    listener_.disconnected(addressOf(device));
    adjustAdvertisement();
}

void BluezPen::read(Characteristic characteristic, const IncomingCall& call) {
    const Properties options = call.body().readProperties();
    if (const auto* device = find<ObjectPath>(options, "device")) hostCame(device->text);
    listener_.wasRead(characteristic);
    const auto* offset = find<std::uint16_t>(options, "offset");
    const Read read{call, characteristic, offset ? *offset : std::size_t{0}};
    if (isAnswering_)
        answer(read);
    else
        heldReads_.push_back(read);
}

void BluezPen::answer(const Read& read) const {
    const Data& value = values_[indexOf(read.characteristic)];
    if (read.offset > value.size())
        return read.call.refuse("org.bluez.Error.InvalidOffset", "The value is shorter.");
    read.call.answer(arguments(Data(std::span(value.begin(), value.end()).subspan(read.offset))));
}

void BluezPen::setAnswering(bool isAnswering) {
    isAnswering_ = isAnswering;
    if (!isAnswering) return;
    for (const Read& read : std::exchange(heldReads_, {})) answer(read);
}

// bluetoothd takes what it is told in order: once it has answered a ping, it has the values that
// were told before.
void BluezPen::setValue(Characteristic characteristic, Data value) {
    values_[indexOf(characteristic)] = value;
    if (!isRegistered_) return;
    objects_->change(characteristicPaths[indexOf(characteristic)], ObjectTree::characteristic,
                     "Value", value);
    if (++valuesUnderWay_ != mostValuesUnderWay) return;
    daemon_.ping(whileUp([this](Answer&) {
        valuesUnderWay_ = 0;
        listener_.hasRoom();
    }));
}

bool BluezPen::drop() {
    for (const std::string& host : hosts_) daemon_.send(host, ObjectTree::device, "Disconnect");
    return !hosts_.empty();
}

Bus::Completion BluezPen::whileUp(std::function<void(Answer&)> completion) {
    return [this, up = ups_, completion = std::move(completion)](Answer& answer) {
        if (up == ups_ && !adapter_.empty()) completion(answer);
    };
}

}  // namespace InkoraTool
