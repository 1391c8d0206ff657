#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/radios/bluez/BluezDaemon.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

/// The services and values of one link, from the moment its services are resolved to its end.
///
/// BlueZ shows a read as two things, first as a change of the property Value, like a notification,
/// then as the answer (5.66). So that neither is reported twice, changes are held back while a read
/// of that characteristic is under way; its answer tells which of them was its own.
class GattSession : public std::enable_shared_from_this<GattSession> {
public:
    GattSession(const UUID& peripheral, std::string devicePath, BluezDaemon& daemon,
                RadioListener& listener);

    void discoverServices();
    void discoverCharacteristics(AttributeHandle service);
    void read(AttributeHandle characteristic);
    void subscribe(AttributeHandle characteristic, bool on);

    /// Gives up all subscriptions, without waiting for it.
    void hangUp();

    /// The property Value of a characteristic was signalled, changed or not.
    void valueSignalled(const std::string& path);

private:
    struct HeldValue {
        Data value;
        bool isSubscribed;  // when it came
    };

    struct Attribute {
        std::string path;
        bool isSubscribed = false;  // by us, on this link: BlueZ's own subscriptions outlive links
        int readsAsked = 0;         // the first of them is under way
        std::vector<HeldValue> held = {};
    };

    AttributeHandle handleOf(const std::string& path);
    Attribute* attribute(AttributeHandle handle);
    void sendRead(AttributeHandle handle);
    void readAnswered(AttributeHandle handle, Answer& answer);
    void subscriptionAnswered(AttributeHandle handle, bool on,
                              const std::optional<BusError>& error);

    UUID peripheral_;
    std::string devicePath_;
    BluezDaemon& daemon_;
    RadioListener& listener_;
    std::vector<Attribute> attributes_;  // the one with handle n is at n - 1
};

}  // namespace InkoraKit
