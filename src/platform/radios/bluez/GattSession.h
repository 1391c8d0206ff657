#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/BluezDaemon.h"
#include "platform/radios/bluez/ValueSieve.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace InkoraKit {

/// The services and values of one link, from the moment its services are resolved to its end.
///
/// BlueZ shows a read as two things, first as a change of the property Value, like a notification,
/// then as the answer (5.66). So that neither is reported twice, changes are held back while a read
/// of that characteristic is under way; its answer tells which of them was its own. A ValueSieve
/// takes out what is due to other clients.
///
/// When the peripheral changes its table, BlueZ takes away the objects concerned and exports new
/// ones. What was subscribed is subscribed anew where the new table has it too, under its old
/// handle.
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

    /// BlueZ has sent a message, of which more may be told next.
    void heard(ValueSieve::Serial serial);
    /// The property Value of a characteristic was signalled, changed or not.
    void valueSignalled(const std::string& path);

    void attributeAdded(const std::string& path);
    void attributeRemoved(const std::string& path);

private:
    struct HeldValue {
        Data value;
        ValueSieve::Serial serial;
        bool isSubscribed;  // when it came
    };

    struct Attribute {
        std::string path;           // empty when the table has it no more
        std::string uuid;           // with that of its service, if it is a characteristic
        bool isSubscribed = false;  // by us, on this link: BlueZ's own subscriptions outlive links
        int readsAsked = 0;         // the first of them is under way
        std::vector<HeldValue> held = {};
        ValueSieve sieve = {};
    };

    AttributeHandle handleAt(const std::string& path) const;  // 0 when it has none
    AttributeHandle handleOf(const std::string& path);
    std::string uuidAt(const std::string& path) const;
    Attribute* attribute(AttributeHandle handle);
    void forget(const std::string& path);
    void carryOver();
    void tellTableChanged();
    void sendRead(AttributeHandle handle);
    void readAnswered(AttributeHandle handle, Answer& answer);
    void sendSubscription(AttributeHandle handle, bool on, bool isAskedFor);
    void subscriptionAnswered(AttributeHandle handle, bool on,
                              const std::optional<BusError>& error);
    void tell(AttributeHandle handle, const std::optional<Data>& notified);
    void makeSure();
    void madeSure();

    UUID peripheral_;
    std::string devicePath_;
    BluezDaemon& daemon_;
    RadioListener& listener_;
    std::vector<Attribute> attributes_;  // the one with handle n is at n - 1
    std::set<std::string> table_;        // all paths; those told late are here already
    std::vector<AttributeHandle> invalidated_;
    Alarm tableChange_;
    ValueSieve::Serial serial_ = 0;
    bool isMakingSure_ = false;
};

}  // namespace InkoraKit
