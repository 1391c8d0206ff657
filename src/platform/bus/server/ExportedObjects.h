#pragma once

#include "platform/bus/Bus.h"
#include "platform/bus/Properties.h"
#include "platform/bus/server/IncomingCall.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace InkoraKit {

/// Objects that this process shows to one other on the bus: their properties, and methods that this
/// one may call. Whoever else calls is refused.
///
/// The object at the root is the ObjectManager (D-Bus Specification, Standard Interfaces) of all.
/// Objects are added before the other process looks at them: nothing tells of more.
class ExportedObjects {
public:
    using Method = std::function<void(const IncomingCall&)>;

    /// `caller` is the other's unique name. The bus outlives the objects, or has been lost.
    ExportedObjects(Bus& bus, std::string root, std::string caller);
    ExportedObjects(const ExportedObjects&) = delete;
    ExportedObjects& operator=(const ExportedObjects&) = delete;

    void set(const std::string& path, const std::string& interface, Properties properties);
    /// A method answers its call, now or later.
    void set(const std::string& path, const std::string& interface, const std::string& member,
             Method method);

    /// Changes a property and tells so, even if it was the same before.
    void change(const std::string& path, const std::string& interface, const std::string& property,
                const Variant& value);

private:
    struct SlotRelease {
        void operator()(sd_bus_slot* slot) const;
    };

    void received(const IncomingCall& call);
    bool answersForProperties(const IncomingCall& call) const;

    Bus& bus_;
    const std::string root_;
    const std::string caller_;
    Objects objects_;
    std::map<std::tuple<std::string, std::string, std::string>, Method> methods_;
    std::unique_ptr<sd_bus_slot, SlotRelease> slot_;
};

}  // namespace InkoraKit
