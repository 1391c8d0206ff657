#include "platform/radios/web/WebRadio.h"

#include "platform/bluetooth/RadioErrors.h"
#include "platform/foundation/process/ProcessEnd.h"

#include <algorithm>
#include <span>
#include <utility>

// What the script does.
extern "C" {
void inkora_web_start(InkoraKit::WebRadio* radio);
void inkora_web_stop(InkoraKit::WebRadio* radio);
void inkora_web_end();  // stops all radios
void inkora_web_scan(InkoraKit::WebRadio* radio, bool on);
void inkora_web_connect(InkoraKit::WebRadio* radio, int pen);
void inkora_web_disconnect(int pen);
void inkora_web_discover_services(int pen);
void inkora_web_discover_characteristics(int pen, InkoraKit::AttributeHandle service);
void inkora_web_read(int pen, InkoraKit::AttributeHandle characteristic);
void inkora_web_subscribe(int pen, InkoraKit::AttributeHandle characteristic, bool on);
}

namespace InkoraKit {
namespace {

// In the place of a power in dBm that the browser does not know.
constexpr int unknownTxPower = 127;

}  // namespace

WebRadio::~WebRadio() {
    if (listener_) inkora_web_stop(this);
}

void WebRadio::start(RadioListener& listener) {
    listener_ = &listener;
    // The page goes on when the program does not, and with it the links.
    atProcessEnd(inkora_web_end);
    inkora_web_start(this);
}

void WebRadio::startScan() {
    inkora_web_scan(this, true);
}

void WebRadio::stopScan() {
    inkora_web_scan(this, false);
}

void WebRadio::connect(const UUID& peripheral) {
    inkora_web_connect(this, numberOf(peripheral));
}

void WebRadio::disconnect(const UUID& peripheral) {
    inkora_web_disconnect(numberOf(peripheral));
}

void WebRadio::discoverServices(const UUID& peripheral) {
    inkora_web_discover_services(numberOf(peripheral));
}

void WebRadio::discoverCharacteristics(const UUID& peripheral, AttributeHandle service) {
    inkora_web_discover_characteristics(numberOf(peripheral), service);
}

void WebRadio::read(const UUID& peripheral, AttributeHandle characteristic) {
    inkora_web_read(numberOf(peripheral), characteristic);
}

void WebRadio::subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) {
    inkora_web_subscribe(numberOf(peripheral), characteristic, on);
}

void WebRadio::readRSSI(const UUID& peripheral) {
    listener_->rssiRead(peripheral, std::nullopt,
                        radioErrors::error(CBError::operationNotSupported,
                                           "A page cannot read the signal strength of a link."));
}

// Only what was sighted is ever asked for.
int WebRadio::numberOf(const UUID& peripheral) const {
    const auto entry = std::find_if(pens_.begin(), pens_.end(),
                                    [&](const auto& pen) { return pen.second == peripheral; });
    return entry->first;
}

void WebRadio::stateChanged(CBManagerState state, bool hasWebBluetooth) {
    reason_ = CBManagerStateReason::none;
    if (state == CBManagerState::unauthorized) reason_ = CBManagerStateReason::notPermitted;
    if (state == CBManagerState::unsupported)
        reason_ =
            hasWebBluetooth ? CBManagerStateReason::noAdapter : CBManagerStateReason::noService;
    listener_->adapterStateChanged(state);
}

void WebRadio::sighted(int pen, Sighting sighting) {
    pens_.emplace(pen, sighting.identifier);
    for (const RemoteCharacteristic& item : takeItems())
        sighting.advertisement.serviceUUIDs.push_back(item.uuid);
    listener_->sighted(sighting);
}

}  // namespace InkoraKit

namespace {

using namespace InkoraKit;

// The browser tells no codes: 0x0e is an unlikely error.
std::optional<NSError> errorOf(const char* text) {
    return text ? std::optional(radioErrors::attributeError(0x0e, text)) : std::nullopt;
}

}  // namespace

// What the script reports. Texts and bytes last for as long as the call.
extern "C" {

[[gnu::used]] void inkora_web_state(WebRadio* radio, CBManagerState state, bool hasWebBluetooth) {
    radio->stateChanged(state, hasWebBluetooth);
}

/// One more of what the next report tells of: services and characteristics.
[[gnu::used]] void inkora_web_item(WebRadio* radio, const char* uuid, AttributeHandle handle,
                                   std::uint32_t properties) {
    radio->add({handle, CBUUID(uuid), properties});
}

[[gnu::used]] void inkora_web_sighted(WebRadio* radio, int pen, const std::uint8_t* identifier,
                                      const char* name, int rssi, int txPower) {
    UUID::Bytes bytes;
    std::copy_n(identifier, bytes.size(), bytes.begin());
    Sighting sighting{.identifier = UUID(bytes), .rssi = rssi};
    if (name) sighting.advertisement.localName = name;
    if (txPower != unknownTxPower) sighting.advertisement.txPowerLevel = txPower;
    radio->sighted(pen, std::move(sighting));
}

[[gnu::used]] void inkora_web_connected(WebRadio* radio, int pen) {
    radio->listener().connected(radio->pen(pen));
}

[[gnu::used]] void inkora_web_failed(WebRadio* radio, int pen, const char* text) {
    radio->listener().connectionFailed(radio->pen(pen),
                                       radioErrors::error(CBError::connectionFailed, text));
}

[[gnu::used]] void inkora_web_disconnected(WebRadio* radio, int pen, bool wasAskedFor) {
    std::optional<NSError> error;
    if (!wasAskedFor) error = radioErrors::peripheralDisconnected();
    radio->listener().disconnected(radio->pen(pen), error);
}

[[gnu::used]] void inkora_web_services(WebRadio* radio, int pen) {
    std::vector<RemoteService> services;
    for (const RemoteCharacteristic& item : radio->takeItems())
        services.push_back({item.handle, item.uuid});
    radio->listener().servicesDiscovered(radio->pen(pen), std::move(services), std::nullopt);
}

[[gnu::used]] void inkora_web_characteristics(WebRadio* radio, int pen, AttributeHandle service) {
    radio->listener().characteristicsDiscovered(radio->pen(pen), service, radio->takeItems(),
                                                std::nullopt);
}

[[gnu::used]] void inkora_web_value_read(WebRadio* radio, int pen, AttributeHandle characteristic,
                                         const std::uint8_t* bytes, std::size_t size,
                                         const char* failure) {
    std::optional<Data> value;
    if (bytes) value.emplace(std::span(bytes, size));
    radio->listener().valueRead(radio->pen(pen), characteristic, std::move(value),
                                errorOf(failure));
}

[[gnu::used]] void inkora_web_notified(WebRadio* radio, int pen, AttributeHandle characteristic,
                                       const std::uint8_t* bytes, std::size_t size) {
    radio->listener().valueNotified(radio->pen(pen), characteristic, Data(std::span(bytes, size)));
}

[[gnu::used]] void inkora_web_subscribed(WebRadio* radio, int pen, AttributeHandle characteristic,
                                         bool isNotifying, const char* failure) {
    radio->listener().subscriptionChanged(radio->pen(pen), characteristic, isNotifying,
                                          errorOf(failure));
}
}
