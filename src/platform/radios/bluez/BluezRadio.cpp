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
#include <string_view>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

constexpr const char* everything = "/org/bluez";

// From the end of a link to the scan of a host that wants its pen back.
constexpr double anticipationTime = 1;

constexpr std::array<std::string_view, 2> linkProperties = {"Connected", "ServicesResolved"};
constexpr std::array<std::string_view, 6> advertisedProperties = {
    "RSSI", "Name", "UUIDs", "ManufacturerData", "ServiceData", "TxPower"};

// BlueZ keeps a link whose client has left the bus, and a connected pen cannot be found again. A
// process that ends may never destroy its manager, so the radios still alive are known here.
std::vector<BluezRadio*>& liveRadios() {
    // Never destroyed: used at the very end.
    static auto* const radios = new std::vector<BluezRadio*>;
    return *radios;
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
    atProcessEnd(hangUpAll);
}

BluezRadio::~BluezRadio() {
    hangUp();
    std::erase(liveRadios(), this);
}

void BluezRadio::hangUp() {
    for (const auto& link : links_) link->hangUp();
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

BluezRadio::Condition BluezRadio::condition() const {
    using enum CBManagerState;
    using Reason = CBManagerStateReason;
    switch (daemon_.presence()) {
        case BluezDaemon::Presence::unknown:
            return {};
        case BluezDaemon::Presence::noBus:
            return {unsupported, Reason::noBus};
        case BluezDaemon::Presence::absent:
            return {unsupported, Reason::noService};
        case BluezDaemon::Presence::lost:
            return {resetting, Reason::noService};
        case BluezDaemon::Presence::denied:
            return {unauthorized, Reason::notPermitted};
        case BluezDaemon::Presence::present:
            break;
    }
    if (discovery_.isDenied()) return {unauthorized, Reason::notPermitted};
    if (!adapter_.empty()) {
        if (isPowered(adapter_)) return {poweredOn, Reason::none};
        return {poweredOff, isBlocked(adapter_) ? Reason::blocked : Reason::switchedOff};
    }
    if (!daemon_.isSettling()) return {unsupported, Reason::noAdapter};
    // What went on has ended, also if the adapter is back in a moment (a reset, 5.66).
    if (state_ == poweredOn) return {resetting, Reason::noAdapter};
    return {std::nullopt, Reason::noAdapter};
}

CBManagerStateReason BluezRadio::stateReason() const {
    return condition().reason;
}

// Nothing survives the loss of power, and nothing is resumed by itself: who scanned or connected
// learns of the state and decides anew.
void BluezRadio::updateState() {
    const auto [state, reason] = condition();
    if (state != CBManagerState::poweredOn) {
        isScanWanted_ = false;
        anticipation_.cancel();
        links_.clear();
    }
    updateDiscovery();
    if (!state || state == state_) return;
    state_ = state;
    if (reason != CBManagerStateReason::none) NSObject::printThisLineToConsole(description(reason));
    listener_->adapterStateChanged(*state);
}

bool BluezRadio::isCentral(const std::string& adapter) const {
    return daemon_.objects().mayBe("central", adapter);
}

bool BluezRadio::isPowered(const std::string& adapter) const {
    return daemon_.objects().isPowered(adapter);
}

bool BluezRadio::isBlocked(const std::string& adapter) const {
    const auto* state =
        daemon_.objects().property<std::string>(adapter, ObjectTree::adapter, "PowerState");
    return (state && *state == "off-blocked") || radioBlockOf(adapter) != RadioBlock::none;
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
    const auto isInTheWay = [](const std::shared_ptr<Link>& link) {
        using enum Link::Stage;
        const Link::Stage stage = link->stage();
        return stage == connecting || stage == resolving || stage == up || stage == closing;
    };
    const bool isFree = std::none_of(links_.begin(), links_.end(), isInTheWay);
    const bool isBetter =
        isPowered(adapter) && (!isPowered(adapter_) || (isFirstUsed(adapter) && isFree));
    if (adapter_.empty() || isBetter) use(adapter);
}

void BluezRadio::use(const std::string& adapter) {
    if (std::exchange(adapter_, adapter) != adapter) {
        const auto links = links_;
        for (const auto& link : links) link->deviceRemoved();
    }
    if (firstUsed_.empty()) firstUsed_ = addressOf(adapter);
    discovery_.use(isPowered(adapter) ? adapter : std::string());
    updateState();
}

void BluezRadio::messageHeard(std::uint64_t serial) {
    for (const auto& link : links_)
        if (const auto session = link->session()) session->heard(serial);
}

void BluezRadio::presenceChanged() {
    if (daemon_.presence() == BluezDaemon::Presence::present) {
        if (adapter_.empty()) return use(bestAdapter());
        return updateState();
    }
    links_.clear();
    use({});
}

void BluezRadio::interfaceAdded(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::adapter) adapterImproved(path);
    if (interface == ObjectTree::device) deviceChanged(path, {});
    if (const auto session = sessionOf(path, interface)) session->attributeAdded(path);
}

void BluezRadio::interfaceRemoved(const std::string& path, const std::string& interface) {
    if (interface == ObjectTree::adapter && path == adapter_) use(bestAdapter());
    if (const auto session = sessionOf(path, interface)) session->attributeRemoved(path);
    if (interface != ObjectTree::device) return;
    if (const auto link = linkAt(path)) link->deviceRemoved();
}

// That of the link which a service or characteristic belongs to.
std::shared_ptr<GattSession> BluezRadio::sessionOf(const std::string& path,
                                                   const std::string& interface) const {
    if (interface != ObjectTree::service && interface != ObjectTree::characteristic) return nullptr;
    const auto link = linkAt(InkoraKit::deviceOf(path));
    return link ? link->session() : nullptr;
}

void BluezRadio::propertiesChanged(const std::string& path, const std::string& interface,
                                   const Properties& before) {
    if (interface == ObjectTree::characteristic && before.contains("Value")) {
        if (const auto session = sessionOf(path, interface)) session->valueSignalled(path);
    } else if (interface == ObjectTree::device) {
        deviceChanged(path, before);
    } else if (interface == ObjectTree::adapter && before.contains("Powered")) {
        if (path == adapter_) return use(bestAdapter());
        adapterImproved(path);
    }
}

// --- scanning -----------------------------------------------------------------------------------

void BluezRadio::startScan() {
    if (std::exchange(isScanWanted_, true)) return;
    linkedElsewhere_.clear();
    updateDiscovery();
    if (discovery_.isRunning()) reportAll();
}

void BluezRadio::stopScan() {
    isScanWanted_ = false;
    anticipation_.cancel();
    updateDiscovery();
}

void BluezRadio::updateDiscovery() {
    const auto isAny = [this](auto property) {
        return std::any_of(links_.begin(), links_.end(),
                           [&](const auto& link) { return (*link.*property)(); });
    };
    const bool isOfUse = isScanWanted_ || anticipation_.isSet() || isAny(&Link::isSearching);
    discovery_.setWanted(isOfUse && !isAny(&Link::isConnecting));
    if (!discovery_.isIdle()) return;
    const auto links = links_;
    for (const auto& link : links) link->proceed();
}

void BluezRadio::discoveryMoved() {
    if (discovery_.isDenied()) return updateState();
    if (discovery_.isIdle()) return updateDiscovery();
    if (!discovery_.isRunning()) return;
    if (std::exchange(provesPower_, false)) adapterIsOn();
    reportAll();
}

// Another client's discovery may have heard of devices that ours is not told of again.
void BluezRadio::reportAll() {
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
        return before.empty() ||
               std::any_of(names.begin(), names.end(),
                           [&](std::string_view name) { return before.contains(name); });
    };
    const bool isLinkConcerned = concerns(linkProperties);
    for (const auto links = links_; const auto& link : links) {
        if (link->peripheral() == *identifier) link->deviceAdded();
        if (link->devicePath() == path && isLinkConcerned) link->deviceChanged();
    }
    if (isLinkConcerned || concerns(advertisedProperties)) reportIfHeard(path);
}

void BluezRadio::reportIfHeard(const std::string& path) {
    if (!isScanWanted_ || adapter_.empty() || !path.starts_with(adapter_ + "/")) return;
    const Properties* device = daemon_.objects().properties(path, ObjectTree::device);
    const auto identifier = identifierOf(path);
    if (!device || !identifier) return;
    if (const auto* rssi = find<std::int16_t>(*device, "RSSI"))
        return listener_->sighted(sightingOf(path, *identifier, *rssi));
    const bool* isConnected = find<bool>(*device, "Connected");
    if (isConnected && *isConnected) reportLinked(path, *identifier);
}

// The link is another client's, or of a host that has ended without closing it. The device does not
// advertise, and is there all the same.
void BluezRadio::reportLinked(const std::string& path, const UUID& identifier) {
    if (linkTo(identifier) || !linkedElsewhere_.insert(identifier).second) return;
    const auto report = [this, path, identifier](std::optional<int> rssi, const std::string&) {
        if (isScanWanted_ && identifierOf(path) == identifier)
            listener_->sighted(sightingOf(path, identifier, rssi.value_or(unknownRSSI)));
    };
    const auto address = DeviceAddress::fromIdentifier(identifier);
    if (!canReadRSSI_ || !address) return report(std::nullopt, {});
    management_.readRSSI(controllerIndex(adapter_), *address, report);
}

Sighting BluezRadio::sightingOf(const std::string& path, const UUID& identifier, int rssi) const {
    const Properties& device = *daemon_.objects().properties(path, ObjectTree::device);
    Sighting sighting;
    sighting.identifier = identifier;
    sighting.name = advertised_.ownName(path, device);
    sighting.advertisement = advertised_.advertisement(path, device);
    sighting.rssi = rssi;
    return sighting;
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

// From its properties: once the address was resolved to another, the path shows the former still.
std::string BluezRadio::deviceOf(const UUID& peripheral) const {
    for (const std::string& device : daemon_.objects().below(adapter_, ObjectTree::device))
        if (identifierOf(device) == peripheral) return device;
    return {};
}

std::shared_ptr<Link> BluezRadio::linkAt(const std::string& device) const {
    for (const auto& link : links_)
        if (link->devicePath() == device) return link;
    return nullptr;
}

std::shared_ptr<Link> BluezRadio::linkTo(const UUID& peripheral) const {
    for (const auto& link : links_)
        if (link->peripheral() == peripheral) return link;
    return nullptr;
}

std::shared_ptr<GattSession> BluezRadio::sessionWith(const UUID& peripheral) const {
    const auto link = linkTo(peripheral);
    return link ? link->session() : nullptr;
}

// A host whose pen was lost looks for it, as a rule. The discovery that goes ahead of that shows
// besides that the adapter is on: the kernel begins none while it is being switched off. Unless one
// goes on already, of which BlueZ then only counts the clients.
void BluezRadio::linkMoved(Link& link) {
    if (link.isLoss()) {
        const bool* isDiscovering =
            daemon_.objects().property<bool>(adapter_, ObjectTree::adapter, "Discovering");
        provesPower_ = isDiscovering && !*isDiscovering;
        anticipation_.set(anticipationTime, [this] { updateDiscovery(); });
    }
    if (link.stage() == Link::Stage::ended)
        std::erase_if(links_, [&](const auto& each) { return each.get() == &link; });
    updateDiscovery();
}

void BluezRadio::adapterIsOn() {
    const auto links = links_;
    for (const auto& link : links) link->adapterIsOn();
}

void BluezRadio::connect(const UUID& peripheral) {
    if (!DeviceAddress::fromIdentifier(peripheral) || adapter_.empty())
        return listener_->connectionFailed(
            peripheral, bluezErrors::connectionFailed("The peripheral is not known."));
    std::shared_ptr<Link> link = linkTo(peripheral);
    if (!link) {
        Link::Owner& owner = *this;
        link = std::make_shared<Link>(peripheral, daemon_, *listener_, owner);
        links_.push_back(link);
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
