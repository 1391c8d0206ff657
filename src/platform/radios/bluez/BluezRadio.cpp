#include "platform/radios/bluez/BluezRadio.h"

#include <InkoraKit/platform/NSObject.h>

#include "platform/foundation/process/ProcessEnd.h"
#include "platform/radios/bluez/BluezErrors.h"
#include "platform/radios/bluez/DeviceAddress.h"
#include "platform/radios/bluez/RadioSwitch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

constexpr const char* everything = "/org/bluez";

constexpr std::array<std::string_view, 2> linkProperties = {"Connected", "ServicesResolved"};
constexpr std::array<std::string_view, 6> advertisedProperties = {
    "RSSI", "Name", "UUIDs", "ManufacturerData", "ServiceData", "TxPower"};

// BlueZ keeps a link whose client has left the bus, and a connected pen cannot be found again. A
// process that ends may never destroy its manager, so the radios still alive are known here.
std::vector<BluezRadio*>& liveRadios() {
    static std::vector<BluezRadio*> radios;
    return radios;
}

void hangUpAll() {
    for (BluezRadio* radio : liveRadios()) radio->hangUp();
}

// "/org/bluez/hci1" is the controller with index 1.
std::uint16_t controllerIndex(const std::string& adapter) {
    std::uint16_t index = ManagementSocket::noController;
    const auto position = adapter.find_last_not_of("0123456789") + 1;
    std::from_chars(adapter.data() + position, adapter.data() + adapter.size(), index);
    return index;
}

}  // namespace

BluezRadio::BluezRadio()
    : daemon_(*this),
      discovery_(daemon_, [this] { discoveryMoved(); }),
      canReadRSSI_(ManagementSocket::isPermitted()) {
    liveRadios().push_back(this);
    static std::once_flag isRegistered;
    std::call_once(isRegistered, [] { atProcessEnd(hangUpAll); });
}

BluezRadio::~BluezRadio() {
    hangUp();
    std::erase(liveRadios(), this);
}

void BluezRadio::hangUp() {
    for (const auto& [device, link] : links_) link->hangUp();
    if (!links_.empty()) daemon_.flush();
}

RadioCapabilities BluezRadio::capabilities() const {
    return {.canReadRSSI = canReadRSSI_};
}

void BluezRadio::start(RadioListener& listener) {
    listener_ = &listener;
    daemon_.start();
}

// --- the adapter in use -------------------------------------------------------------------------

std::optional<CBManagerState> BluezRadio::adapterState() const {
    switch (daemon_.presence()) {
        case BluezDaemon::Presence::unknown:
            return std::nullopt;
        case BluezDaemon::Presence::noBus:
        case BluezDaemon::Presence::absent:
            return CBManagerState::unsupported;
        case BluezDaemon::Presence::denied:
            return CBManagerState::unauthorized;
        case BluezDaemon::Presence::lost:
            return CBManagerState::resetting;
        case BluezDaemon::Presence::present:
            break;
    }
    if (discovery_.isDenied()) return CBManagerState::unauthorized;
    if (!adapter_.empty())
        return isPowered(adapter_) ? CBManagerState::poweredOn : CBManagerState::poweredOff;
    if (!daemon_.isSettling()) return CBManagerState::unsupported;
    // What went on has ended, also if the adapter is back in a moment (a reset, 5.66).
    if (state_ == CBManagerState::poweredOn) return CBManagerState::resetting;
    return std::nullopt;
}

CBManagerStateReason BluezRadio::stateReason() const {
    switch (daemon_.presence()) {
        case BluezDaemon::Presence::unknown:
            return CBManagerStateReason::none;
        case BluezDaemon::Presence::noBus:
            return CBManagerStateReason::noBus;
        case BluezDaemon::Presence::absent:
        case BluezDaemon::Presence::lost:
            return CBManagerStateReason::noService;
        case BluezDaemon::Presence::denied:
            return CBManagerStateReason::notPermitted;
        case BluezDaemon::Presence::present:
            break;
    }
    if (discovery_.isDenied()) return CBManagerStateReason::notPermitted;
    if (adapter_.empty()) return CBManagerStateReason::noAdapter;
    if (isPowered(adapter_)) return CBManagerStateReason::none;
    return isBlocked(adapter_) ? CBManagerStateReason::blocked : CBManagerStateReason::switchedOff;
}

// Nothing survives the loss of power, and nothing is resumed by itself: who scanned or connected
// learns of the state and decides anew.
void BluezRadio::updateState() {
    const auto state = adapterState();
    if (state != CBManagerState::poweredOn) {
        isScanWanted_ = false;
        links_.clear();
    }
    updateDiscovery();
    if (!state || state == state_) return;
    state_ = state;
    const std::string_view reason = description(stateReason());
    if (!reason.empty()) NSObject::printThisLineToConsole(reason);
    listener_->adapterStateChanged(*state);
}

bool BluezRadio::isCentral(const std::string& adapter) const {
    const auto* roles =
        daemon_.objects().property<std::vector<std::string>>(adapter, ObjectTree::adapter, "Roles");
    return !roles || std::ranges::find(*roles, "central") != roles->end();
}

bool BluezRadio::isPowered(const std::string& adapter) const {
    const bool* isPowered =
        daemon_.objects().property<bool>(adapter, ObjectTree::adapter, "Powered");
    return isPowered && *isPowered;
}

bool BluezRadio::isBlocked(const std::string& adapter) const {
    const auto* state =
        daemon_.objects().property<std::string>(adapter, ObjectTree::adapter, "PowerState");
    return (state && *state == "off-blocked") || isRadioBlocked(controllerIndex(adapter));
}

bool BluezRadio::isFirstUsed(const std::string& adapter) const {
    return !firstUsed_.empty() && addressOf(adapter) == firstUsed_;
}

std::string BluezRadio::addressOf(const std::string& adapter) const {
    const auto* address =
        daemon_.objects().property<std::string>(adapter, ObjectTree::adapter, "Address");
    return address ? *address : std::string();
}

std::string BluezRadio::bestAdapter() const {
    std::string best;
    const auto isBetter = [&](const std::string& adapter) {
        if (best.empty()) return true;
        if (isPowered(adapter) != isPowered(best)) return isPowered(adapter);
        return isFirstUsed(adapter) && !isFirstUsed(best);
    };
    for (const std::string& adapter : daemon_.objects().below(everything, ObjectTree::adapter))
        if (isCentral(adapter) && isBetter(adapter)) best = adapter;
    return best;
}

// It came, or was switched on.
void BluezRadio::adapterImproved(const std::string& adapter) {
    if (!isCentral(adapter)) return;
    const auto isInTheWay = [](const auto& entry) {
        using enum Link::Stage;
        const Link::Stage stage = entry.second->stage();
        return stage == connecting || stage == resolving || stage == up || stage == closing;
    };
    const bool isFree = std::ranges::none_of(links_, isInTheWay);
    const bool isBetter =
        isPowered(adapter) && (!isPowered(adapter_) || (isFirstUsed(adapter) && isFree));
    if (adapter_.empty() || isBetter) use(adapter);
}

void BluezRadio::use(const std::string& adapter) {
    if (adapter != adapter_) {
        const auto links = links_;
        for (const auto& [device, link] : links) link->deviceRemoved();
    }
    adapter_ = adapter;
    if (firstUsed_.empty()) firstUsed_ = addressOf(adapter);
    discovery_.use(isPowered(adapter) ? adapter : std::string());
    updateState();
}

void BluezRadio::presenceChanged() {
    if (daemon_.presence() == BluezDaemon::Presence::present) {
        if (adapter_.empty()) return use(bestAdapter());
        return updateState();
    }
    links_.clear();
    advertised_.clear();
    use({});
}

void BluezRadio::interfaceAdded(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::adapter) adapterImproved(path);
    if (interface == ObjectTree::device) deviceChanged(path, {});
}

void BluezRadio::interfaceRemoved(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::adapter && path == adapter_) use(bestAdapter());
    if (interface != ObjectTree::device) return;
    advertised_.deviceRemoved(path);
    if (const auto link = linkAt(path)) link->deviceRemoved();
}

void BluezRadio::propertiesChanged(const std::string& path, const std::string& interface,
                                   const Properties& before) {
    if (interface == ObjectTree::characteristic && before.contains("Value")) {
        const auto link = linkAt(deviceOf(path));
        if (const auto session = link ? link->session() : nullptr) session->valueSignalled(path);
    } else if (interface == ObjectTree::device) {
        deviceChanged(path, before);
    } else if (interface == ObjectTree::adapter && before.contains("Powered")) {
        if (path == adapter_) return use(bestAdapter());
        adapterImproved(path);
    }
}

// --- scanning -----------------------------------------------------------------------------------

void BluezRadio::startScan() {
    isScanWanted_ = true;
    updateDiscovery();
}

void BluezRadio::stopScan() {
    isScanWanted_ = false;
    updateDiscovery();
}

void BluezRadio::updateDiscovery() {
    const bool isConnecting =
        std::ranges::any_of(links_, [](const auto& entry) { return entry.second->isAttempt(); });
    discovery_.setWanted(isScanWanted_ && !isConnecting);
    if (!discovery_.isIdle()) return;
    const auto links = links_;
    for (const auto& [device, link] : links) link->proceed();
}

void BluezRadio::discoveryMoved() {
    if (discovery_.isDenied()) return updateState();
    if (discovery_.isIdle()) return updateDiscovery();
    if (!discovery_.isRunning()) return;
    // Another client's discovery may have heard of devices that ours is not told of again.
    for (const std::string& device : daemon_.objects().below(adapter_, ObjectTree::device))
        reportIfHeard(device);
}

// A device in the tree may be long gone: heard of it was only where its strength is told.
void BluezRadio::deviceChanged(const std::string& path, const Properties& before) {
    const Properties* device = daemon_.objects().properties(path, ObjectTree::device);
    const auto identifier = identifierOf(path);
    if (!device || !identifier) return;
    advertised_.deviceChanged(path, before, *device);
    if (before.contains("Name"))
        if (const auto name = advertised_.ownName(path, *device))
            listener_->nameChanged(*identifier, *name);

    const auto concerns = [&](const auto& names) {
        return before.empty() || std::ranges::any_of(names, [&](std::string_view name) {
                   return before.contains(name);
               });
    };
    const auto link = linkAt(path);
    if (link && concerns(linkProperties)) link->deviceChanged();
    if (concerns(advertisedProperties)) reportIfHeard(path);
}

void BluezRadio::reportIfHeard(const std::string& path) {
    if (!isScanWanted_ || adapter_.empty() || !path.starts_with(adapter_ + "/")) return;
    const Properties* device = daemon_.objects().properties(path, ObjectTree::device);
    const auto identifier = identifierOf(path);
    const auto* rssi = device ? find<std::int16_t>(*device, "RSSI") : nullptr;
    if (!rssi || !identifier) return;
    Sighting sighting;
    sighting.identifier = *identifier;
    sighting.name = advertised_.ownName(path, *device);
    sighting.advertisement = advertised_.advertisement(path, *device);
    sighting.rssi = *rssi;
    listener_->sighted(sighting);
}

// --- links --------------------------------------------------------------------------------------

std::optional<UUID> BluezRadio::identifierOf(const std::string& device) const {
    const ObjectTree& objects = daemon_.objects();
    const auto* address = objects.property<std::string>(device, ObjectTree::device, "Address");
    const auto* type = objects.property<std::string>(device, ObjectTree::device, "AddressType");
    if (!address || !type) return std::nullopt;
    const auto parsed = DeviceAddress::fromText(*address, *type);
    return parsed ? std::optional(parsed->identifier()) : std::nullopt;
}

std::shared_ptr<Link> BluezRadio::linkAt(const std::string& device) const {
    const auto entry = links_.find(device);
    return entry == links_.end() ? nullptr : entry->second;
}

std::shared_ptr<Link> BluezRadio::linkTo(const UUID& peripheral) const {
    const auto address = DeviceAddress::fromIdentifier(peripheral);
    return address ? linkAt(address->pathBelow(adapter_)) : nullptr;
}

std::shared_ptr<GattSession> BluezRadio::sessionWith(const UUID& peripheral) const {
    const auto link = linkTo(peripheral);
    return link ? link->session() : nullptr;
}

void BluezRadio::linkMoved(Link& link) {
    const auto entry = links_.find(link.devicePath());
    const bool isOver = link.stage() == Link::Stage::ended;
    if (isOver && entry != links_.end() && entry->second.get() == &link) links_.erase(entry);
    updateDiscovery();
}

void BluezRadio::connect(const UUID& peripheral) {
    const auto address = DeviceAddress::fromIdentifier(peripheral);
    if (!address || adapter_.empty())
        return listener_->connectionFailed(
            peripheral, bluezErrors::connectionFailed("The peripheral is not known."));
    const std::string device = address->pathBelow(adapter_);
    std::shared_ptr<Link> link = linkAt(device);
    if (!link) {
        Link::Owner& owner = *this;
        link = std::make_shared<Link>(peripheral, device, daemon_, *listener_, owner);
        links_[device] = link;
    }
    link->connect();
}

void BluezRadio::disconnect(const UUID& peripheral) {
    if (const auto link = linkTo(peripheral)) link->disconnect();
}

void BluezRadio::discoverServices(const UUID& peripheral) {
    if (const auto session = sessionWith(peripheral)) session->discoverServices();
}

void BluezRadio::discoverCharacteristics(const UUID& peripheral, AttributeHandle service) {
    if (const auto session = sessionWith(peripheral)) session->discoverCharacteristics(service);
}

void BluezRadio::read(const UUID& peripheral, AttributeHandle characteristic) {
    if (const auto session = sessionWith(peripheral)) session->read(characteristic);
}

void BluezRadio::subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) {
    if (const auto session = sessionWith(peripheral)) session->subscribe(characteristic, on);
}

void BluezRadio::readRSSI(const UUID& peripheral) {
    const auto address = DeviceAddress::fromIdentifier(peripheral);
    if (!address || !sessionWith(peripheral)) return;
    management_.readRSSI(
        controllerIndex(adapter_), *address,
        [this, peripheral](std::optional<int> rssi, const std::string& error) {
            if (!sessionWith(peripheral)) return;
            listener_->rssiRead(
                peripheral, rssi,
                rssi ? std::nullopt : std::optional(bluezErrors::rssiUnavailable(error)));
        });
}

}  // namespace InkoraKit
