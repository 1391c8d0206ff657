#include "support/RadioScript.h"

#include <cstdlib>

namespace InkoraKit {
namespace {

const char* serviceWithHandle(int handle) {
    return handle % 10 == 1 || handle == 5 ? "1F1F" : "180A";
}

const char* characteristicWithHandle(int handle) {
    return handle % 10 == 2 ? "1F14" : handle % 10 == 3 ? "1F17" : "2A19";
}

}  // namespace

RadioScript::RadioScript() {
    ScriptedRadio::install(&transcript, [this](const std::string& word) { happens(word); });
    for (std::size_t i = 0; i < devices.size(); ++i) {
        UUID::Bytes identifier{};
        identifier.back() = static_cast<std::uint8_t>(i);
        devices[i] = UUID(identifier);
    }

    actions["adapter"] = [this] {
        if (const auto* radio = ScriptedRadio::opened(); radio && radio->events)
            radio->events->adapterStateChanged(static_cast<CBManagerState>(number() % 6));
    };
    addEvent("sight", [this](RadioListener& radio, const UUID& from) {
        Sighting seen{.identifier = from, .name = {}, .advertisement = {}, .rssi = -50};
        seen.advertisement.localName = restOfLine();
        radio.sighted(seen);
    });
    addEvent("advertise",
             [this](RadioListener& radio, const UUID& from) { radio.sighted(sighting(from)); });
    addEvent("connected", [](RadioListener& radio, const UUID& to) { radio.connected(to); });
    addEvent("failed",
             [this](RadioListener& radio, const UUID& to) { radio.connectionFailed(to, error); });
    addEvent("lost",
             [this](RadioListener& radio, const UUID& to) { radio.disconnected(to, error); });
    addEvent("gone",
             [](RadioListener& radio, const UUID& to) { radio.disconnected(to, std::nullopt); });
    addEvent("services", [this](RadioListener& radio, const UUID& from) {
        std::optional<NSError> failed;
        auto services = found<RemoteService>(serviceWithHandle, failed);
        for (RemoteService& one : services) one.isPrimary = one.handle < 9;
        radio.servicesDiscovered(from, std::move(services), failed);
    });
    addEvent("characteristics", [this](RadioListener& radio, const UUID& from) {
        const auto service = static_cast<AttributeHandle>(number());
        std::optional<NSError> failed;
        auto all = found<RemoteCharacteristic>(characteristicWithHandle, failed);
        for (RemoteCharacteristic& one : all) one.properties = 0x10 + one.handle;
        radio.characteristicsDiscovered(from, service, std::move(all), failed);
    });
    addEvent("invalidated", [this](RadioListener& radio, const UUID& from) {
        std::vector<AttributeHandle> services;
        for (int next = number(); next != 0; next = number())
            services.push_back(static_cast<AttributeHandle>(next));
        radio.servicesInvalidated(from, services);
    });
    addEvent("read", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        const std::string text = word();
        radio.valueRead(from, handle, value(handle, text), failure(text));
    });
    addEvent("notify", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        radio.valueNotified(from, handle, value(handle, word()));
    });
    addEvent("subscribed", [this](RadioListener& radio, const UUID& from) {
        const auto handle = static_cast<AttributeHandle>(number());
        const std::string text = word();
        radio.subscriptionChanged(from, handle, text.empty(), failure(text));
    });
    addEvent("rssi", [this](RadioListener& radio, const UUID& from) {
        const std::string text = word();
        const auto strength = text == "!" ? std::nullopt : std::optional(std::atoi(text.c_str()));
        radio.rssiRead(from, strength, failure(text));
    });
    addEvent("name", [this](RadioListener& radio, const UUID& of) {
        radio.nameChanged(of, restOfLine().value_or(""));
    });
}

RadioScript::~RadioScript() {
    uninstallRadio();
}

void RadioScript::addEvent(const std::string& name,
                           std::function<void(RadioListener&, const UUID&)> event) {
    actions[name] = [this, event = std::move(event)] {
        if (const auto* radio = ScriptedRadio::opened(); radio && radio->events)
            event(*radio->events, device());
    };
}

std::optional<NSError> RadioScript::failure(std::string_view text) const {
    return text == "!" ? std::optional(error) : std::nullopt;
}

Sighting RadioScript::sighting(const UUID& identifier) {
    Sighting seen{.identifier = identifier, .name = {}, .advertisement = {}, .rssi = -50};
    for (std::string key = word(); !key.empty(); key = word()) {
        if (key == "again") seen.reportEvenIfKnown = true;
        if (key == "name") seen.advertisement.localName = word();
        if (key == "own") seen.name = word();
        if (key == "rssi") seen.rssi = std::atoi(word().c_str());
        if (key == "services") seen.advertisement.serviceUUIDs = uuids();
        if (key == "maker") seen.advertisement.manufacturerData = bytes();
        if (key == "power") seen.advertisement.txPowerLevel = std::atoi(word().c_str());
        if (key == "connectable") seen.advertisement.isConnectable = word() == "yes";
        if (key == "data")
            for (const CBUUID& uuid : uuids())
                seen.advertisement.serviceData.insert_or_assign(uuid, bytes());
    }
    return seen;
}

std::optional<Data> RadioScript::value(AttributeHandle handle, const std::string& text) {
    if (text == "-" || text == "!") return std::nullopt;
    const Data sent = bytesFromHex(text);
    // A colour of less than three bytes has no three components; a battery level is a number.
    if (handle % 10 == 2 && sent.size() < 3) accountedFor.insert(outOfRange);
    if (handle % 10 == 3 &&
        (sent.empty() || sent.size() > 8 || (sent.size() == 8 && sent[0] >= 0x80)))
        accountedFor.insert(nilFound);
    return sent;
}

template <class Found>
std::vector<Found> RadioScript::found(const char* (*uuidOf)(int), std::optional<NSError>& failed) {
    std::vector<Found> all;
    for (std::string next = word(); !next.empty(); next = word()) {
        if (next == "!") {
            failed = error;
            accountedFor.insert(nilFound);  // there may be no list
            continue;
        }
        const int handle = std::atoi(next.c_str()) % 100;
        all.push_back({static_cast<AttributeHandle>(handle), CBUUID(uuidOf(handle))});
    }
    return all;
}

}  // namespace InkoraKit
