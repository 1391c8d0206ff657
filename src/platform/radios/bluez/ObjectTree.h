#pragma once

#include "platform/bus/Properties.h"

#include <string>
#include <string_view>
#include <vector>

namespace InkoraKit {

/// The objects that BlueZ exports, as last told: adapters, devices, services, characteristics.
///
///     /org/bluez/hci0/dev_00_11_22_33_44_55/service0015/char0016
class ObjectTree {
public:
    static constexpr const char* adapter = "org.bluez.Adapter1";
    static constexpr const char* device = "org.bluez.Device1";
    static constexpr const char* service = "org.bluez.GattService1";
    static constexpr const char* characteristic = "org.bluez.GattCharacteristic1";

    void replace(Objects objects) { objects_ = std::move(objects); }
    void clear() { objects_.clear(); }
    void add(const std::string& path, const std::string& interface, Properties properties);
    void remove(const std::string& path, const std::string& interface);

    /// Applies changes and answers what the properties concerned were before: an entry for each,
    /// also for those that did not exist. Of an object not in the tree nothing changes.
    Properties change(const std::string& path, const std::string& interface, Properties&& changed,
                      const std::vector<std::string>& invalidated);

    /// Drops a property wherever it is present.
    void forget(std::string_view interface, std::string_view property);

    /// Null when there is no such object or it lacks that interface. Valid until the next change.
    const Properties* properties(std::string_view path, std::string_view interface) const;

    /// A property of that type, null when there is none. Valid until the next change.
    template <class T>
    const T* property(std::string_view path, std::string_view interface,
                      std::string_view name) const {
        const Properties* all = properties(path, interface);
        return all ? find<T>(*all, name) : nullptr;
    }

    /// The property's value, an empty one when there is none.
    template <class T>
    T valueOf(std::string_view path, std::string_view interface, std::string_view name) const {
        const T* value = property<T>(path, interface, name);
        return value ? *value : T();
    }

    /// Of an adapter, by its path.
    bool isPowered(std::string_view path) const;
    /// Whether an adapter may be "central" or "peripheral"; one that tells no roles may be both.
    bool mayBe(std::string_view role, std::string_view path) const;

    /// The objects with that interface strictly below a path, in the order of their paths, which is
    /// that of the attribute handles in them.
    std::vector<std::string> below(const std::string& path, std::string_view interface) const;

private:
    Objects objects_;
};

/// The part of a path that names the device, empty when the object is no device and not in one.
std::string deviceOf(std::string_view path);

/// The last part of a path: hci0 of an adapter's.
std::string nameOfObject(std::string_view path);

}  // namespace InkoraKit
