#include "platform/radios/trace/RecordingRadio.h"

#include "platform/radios/trace/TraceFields.h"

#include <InkoraKit/platform/Array.h>

#include <utility>

namespace InkoraKit {
namespace {

/// Absent, and left out of the line, where there is nothing to tell.
Any hexadecimal(const std::optional<Data>& bytes) {
    return bytes ? Any(bytes->hexEncodedString()) : Any();
}
Any ifTrue(bool flag) {
    return flag ? Any(true) : Any();
}
template <class Container>
Any ifAny(const Container& members) {
    return members.empty() ? Any() : Any(members);
}

template <class Found, class Show>
Any list(const std::vector<Found>& found, Show show) {
    Array result;
    for (const Found& one : found) result.append(show(one));
    return ifAny(result);
}

Dictionary withoutAbsent(std::initializer_list<std::pair<std::string_view, Any>> members) {
    Dictionary result;
    for (const auto& [key, value] : members)
        if (value.hasValue()) result.set(key, value);
    return result;
}

Any serviceData(const std::map<CBUUID, Data>& data) {
    Dictionary result;
    for (const auto& [uuid, bytes] : data) result.set(uuid.uuidString(), bytes.hexEncodedString());
    return ifAny(result);
}

}  // namespace

RecordingRadio::RecordingRadio(std::unique_ptr<Radio> radio,
                               std::shared_ptr<TraceRecorder> recorder)
    : recorder_(std::move(recorder)), radio_(std::move(radio)) {}

RecordingRadio::~RecordingRadio() {
    recorder_->end();
}

// Commands

void RecordingRadio::start(RadioListener& listener) {
    listener_ = &listener;
    recorder_->begin();
    radio_->start(*this);
}

void RecordingRadio::startScan() {
    command("scan");
    radio_->startScan();
}

void RecordingRadio::stopScan() {
    command("stopScan");
    radio_->stopScan();
}

void RecordingRadio::connect(const UUID& peripheral) {
    command("connect", peripheral);
    radio_->connect(peripheral);
}

void RecordingRadio::disconnect(const UUID& peripheral) {
    command("disconnect", peripheral);
    radio_->disconnect(peripheral);
}

void RecordingRadio::discoverServices(const UUID& peripheral) {
    command("discoverServices", peripheral);
    radio_->discoverServices(peripheral);
}

void RecordingRadio::discoverCharacteristics(const UUID& peripheral, AttributeHandle service) {
    command("discoverCharacteristics", peripheral, service);
    radio_->discoverCharacteristics(peripheral, service);
}

void RecordingRadio::read(const UUID& peripheral, AttributeHandle characteristic) {
    command("read", peripheral, characteristic);
    radio_->read(peripheral, characteristic);
}

void RecordingRadio::subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) {
    command(on ? "subscribe" : "unsubscribe", peripheral, characteristic);
    radio_->subscribe(peripheral, characteristic, on);
}

void RecordingRadio::readRSSI(const UUID& peripheral) {
    command("readRSSI", peripheral);
    radio_->readRSSI(peripheral);
}

// Events

Any RecordingRadio::masked(const std::optional<std::string>& text) const {
    return text ? Any(recorder_->masked(*text)) : Any();
}

Any RecordingRadio::shown(const std::optional<NSError>& error) const {
    if (!error) return {};
    const auto text = error->userInfo().find(NSLocalizedDescriptionKey);
    const bool hasText = text != error->userInfo().end();
    return withoutAbsent({{"domain", error->domain()},
                          {"code", error->code()},
                          {"text", hasText ? masked((*text).second.as<std::string>()) : Any()}});
}

void RecordingRadio::adapterStateChanged(CBManagerState state) {
    const CBManagerStateReason reason = stateReason();
    const bool isWhy = reason != CBManagerStateReason::none;
    recorder_->write("event", "state", nullptr,
                     {{"state", stateName(state)},
                      {"reason", isWhy ? Any(printed(reason)) : Any()},
                      {"noRSSI", ifTrue(!capabilities().canReadRSSI)}});
    listener_->adapterStateChanged(state);
}

void RecordingRadio::sighted(const Sighting& sighting) {
    if (isRecording()) {
        const Advertisement& sent = sighting.advertisement;
        const auto text = [](const CBUUID& uuid) { return uuid.uuidString(); };
        event("sighted", sighting.identifier,
              {{"name", masked(sighting.name)},
               {"localName", masked(sent.localName)},
               {"services", list(sent.serviceUUIDs, text)},
               {"manufacturer", hexadecimal(sent.manufacturerData)},
               {"serviceData", serviceData(sent.serviceData)},
               {"txPower", sent.txPowerLevel},
               {"connectable", sent.isConnectable},
               {"rssi", sighting.rssi == unknownRSSI ? Any() : Any(sighting.rssi)},
               {"again", ifTrue(sighting.reportEvenIfKnown)}});
    }
    listener_->sighted(sighting);
}

void RecordingRadio::nameChanged(const UUID& peripheral, const std::string& name) {
    event("name", peripheral, {{"name", masked(name)}});
    listener_->nameChanged(peripheral, name);
}

void RecordingRadio::connected(const UUID& peripheral) {
    event("connected", peripheral);
    listener_->connected(peripheral);
}

void RecordingRadio::connectionFailed(const UUID& peripheral, const NSError& error) {
    event("connectionFailed", peripheral, {{"error", shown(error)}});
    listener_->connectionFailed(peripheral, error);
}

void RecordingRadio::disconnected(const UUID& peripheral, const std::optional<NSError>& error) {
    event("disconnected", peripheral, {{"error", shown(error)}});
    listener_->disconnected(peripheral, error);
}

void RecordingRadio::servicesDiscovered(const UUID& peripheral, std::vector<RemoteService> services,
                                        const std::optional<NSError>& error) {
    const auto show = [](const RemoteService& one) {
        return withoutAbsent({{"handle", one.handle},
                              {"uuid", one.uuid.uuidString()},
                              {"secondary", ifTrue(!one.isPrimary)}});
    };
    event("services", peripheral, {{"services", list(services, show)}, {"error", shown(error)}});
    listener_->servicesDiscovered(peripheral, std::move(services), error);
}

void RecordingRadio::characteristicsDiscovered(const UUID& peripheral, AttributeHandle service,
                                               std::vector<RemoteCharacteristic> characteristics,
                                               const std::optional<NSError>& error) {
    const auto show = [](const RemoteCharacteristic& one) {
        return Dictionary{{"handle", one.handle},
                          {"uuid", one.uuid.uuidString()},
                          {"properties", one.properties}};
    };
    event("characteristics", peripheral,
          {{"handle", service},
           {"characteristics", list(characteristics, show)},
           {"error", shown(error)}});
    listener_->characteristicsDiscovered(peripheral, service, std::move(characteristics), error);
}

void RecordingRadio::servicesInvalidated(const UUID& peripheral,
                                         const std::vector<AttributeHandle>& services) {
    event("servicesInvalidated", peripheral, {{"services", services}});
    listener_->servicesInvalidated(peripheral, services);
}

void RecordingRadio::valueRead(const UUID& peripheral, AttributeHandle characteristic,
                               std::optional<Data> value, const std::optional<NSError>& error) {
    event("read", peripheral,
          {{"handle", characteristic}, {"value", hexadecimal(value)}, {"error", shown(error)}});
    listener_->valueRead(peripheral, characteristic, std::move(value), error);
}

void RecordingRadio::valueNotified(const UUID& peripheral, AttributeHandle characteristic,
                                   std::optional<Data> value) {
    if (isRecording())
        event("notified", peripheral, {{"handle", characteristic}, {"value", hexadecimal(value)}});
    listener_->valueNotified(peripheral, characteristic, std::move(value));
}

void RecordingRadio::subscriptionChanged(const UUID& peripheral, AttributeHandle characteristic,
                                         bool isNotifying, const std::optional<NSError>& error) {
    event("subscription", peripheral,
          {{"handle", characteristic}, {"on", isNotifying}, {"error", shown(error)}});
    listener_->subscriptionChanged(peripheral, characteristic, isNotifying, error);
}

void RecordingRadio::rssiRead(const UUID& peripheral, std::optional<int> rssi,
                              const std::optional<NSError>& error) {
    event("rssi", peripheral, {{"rssi", rssi}, {"error", shown(error)}});
    listener_->rssiRead(peripheral, rssi, error);
}

}  // namespace InkoraKit
