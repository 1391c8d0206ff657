#pragma once

#include "platform/bluetooth/radio.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {

/// Writes down what a radio reports, a line for each event, and keeps what was found.
class RadioRecord final : public RadioListener {
public:
    using Lines = std::vector<std::string>;

    Lines lines;
    std::vector<Sighting> sightings;
    std::vector<RemoteService> services;
    std::map<AttributeHandle, RemoteCharacteristic> characteristics;

    /// The lines so far, which are then forgotten.
    Lines take() { return std::exchange(lines, {}); }

    bool has(const std::string& line) const {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    /// Of the first characteristic with the UUID; 0, which no attribute has, when there is none.
    AttributeHandle handleOf(const CBUUID& uuid) const {
        for (const auto& [handle, characteristic] : characteristics) {
            if (characteristic.uuid == uuid) return handle;
        }
        return 0;
    }

    void adapterStateChanged(CBManagerState state) override {
        lines.push_back("adapter state " + std::to_string(static_cast<int>(state)));
    }
    void sighted(const Sighting& sighting) override {
        sightings.push_back(sighting);
        lines.push_back("sighted " + sighting.advertisement.localName.value_or("without a name"));
    }
    void nameChanged(const UUID&, const std::string& name) override {
        lines.push_back("name " + name);
    }
    void connected(const UUID&) override { lines.push_back("connected"); }
    void connectionFailed(const UUID&, const NSError&) override {
        lines.push_back("connection failed");
    }
    void disconnected(const UUID&, const std::optional<NSError>& error) override {
        lines.push_back("disconnected" + outcome(error));
    }
    void servicesDiscovered(const UUID&, std::vector<RemoteService> found,
                            const std::optional<NSError>& error) override {
        services = std::move(found);
        lines.push_back("services" + outcome(error));
    }
    void characteristicsDiscovered(const UUID&, AttributeHandle,
                                   std::vector<RemoteCharacteristic> found,
                                   const std::optional<NSError>& error) override {
        std::string line = "characteristics";
        for (const RemoteCharacteristic& characteristic : found) {
            characteristics.insert_or_assign(characteristic.handle, characteristic);
            line += " " + characteristic.uuid.uuidString();
        }
        lines.push_back(line + outcome(error));
    }
    void valueRead(const UUID&, AttributeHandle characteristic, std::optional<Data> value,
                   const std::optional<NSError>& error) override {
        lines.push_back(nameOf(characteristic) + " read " + shown(value) + outcome(error));
    }
    void valueNotified(const UUID&, AttributeHandle characteristic,
                       std::optional<Data> value) override {
        lines.push_back(nameOf(characteristic) + " notified " + shown(value));
    }
    void subscriptionChanged(const UUID&, AttributeHandle characteristic, bool isNotifying,
                             const std::optional<NSError>& error) override {
        lines.push_back(nameOf(characteristic) + (isNotifying ? " subscribed" : " not subscribed") +
                        outcome(error));
    }
    void servicesInvalidated(const UUID&, const std::vector<AttributeHandle>& gone) override {
        lines.push_back(std::to_string(gone.size()) + " services invalidated");
    }
    void rssiRead(const UUID&, std::optional<int> rssi,
                  const std::optional<NSError>& error) override {
        lines.push_back("rssi " + (rssi ? std::to_string(*rssi) : "nothing") + outcome(error));
    }

private:
    static std::string outcome(const std::optional<NSError>& error) {
        return error ? " with error" : "";
    }
    static std::string shown(const std::optional<Data>& value) {
        return value ? "<" + value->hexEncodedString() + ">" : "nothing";
    }
    std::string nameOf(AttributeHandle characteristic) const {
        const auto found = characteristics.find(characteristic);
        return found == characteristics.end() ? "unknown" : found->second.uuid.uuidString();
    }
};

}  // namespace InkoraKit
