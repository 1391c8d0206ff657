#include "platform/bus/server/ExportedObjects.h"

#include "platform/bus/Guarded.h"

#include <systemd/sd-bus.h>

#include <system_error>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* objectManagerInterface = "org.freedesktop.DBus.ObjectManager";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

constexpr const char* accessDenied = "org.freedesktop.DBus.Error.AccessDenied";
constexpr const char* unknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";
constexpr const char* unknownProperty = "org.freedesktop.DBus.Error.UnknownProperty";

}  // namespace

void ExportedObjects::SlotRelease::operator()(sd_bus_slot* slot) const {
    sd_bus_slot_unref(slot);
}

ExportedObjects::ExportedObjects(Bus& bus, std::string root, std::string caller)
    : bus_(bus), root_(std::move(root)), caller_(std::move(caller)) {
    const auto onCall = [](sd_bus_message* message, void* self, sd_bus_error*) noexcept {
        guarded([&] { static_cast<ExportedObjects*>(self)->received(IncomingCall(message)); });
        return 1;
    };
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_add_fallback(bus.bus_.get(), &slot, root_.c_str(), onCall, this);
    if (result < 0) throw std::system_error(-result, std::generic_category(), "D-Bus");
    slot_.reset(slot);
}

void ExportedObjects::set(const std::string& path, const std::string& interface,
                          Properties properties) {
    objects_[path].insert_or_assign(interface, std::move(properties));
}

void ExportedObjects::set(const std::string& path, const std::string& interface,
                          const std::string& member, Method method) {
    methods_.insert_or_assign({path, interface, member}, std::move(method));
}

void ExportedObjects::change(const std::string& path, const std::string& interface,
                             const std::string& property, const Variant& value) {
    objects_[path][interface].insert_or_assign(property, value);
    bus_.emit({path, propertiesInterface, "PropertiesChanged",
               arguments(interface, Properties{{property, value}}, std::vector<std::string>())});
}

void ExportedObjects::received(const IncomingCall& call) {
    if (call.sender() != caller_) return call.refuse(accessDenied, "This is for another process.");
    const auto method = methods_.find({call.path(), call.interface(), call.member()});
    if (method != methods_.end()) return Method(method->second)(call);
    const bool isOfManager = call.path() == root_ && call.interface() == objectManagerInterface;
    if (isOfManager && call.member() == "GetManagedObjects")
        return call.answer(arguments(objects_));
    if (!answersForProperties(call)) call.refuse(unknownMethod, "There is no such method.");
}

bool ExportedObjects::answersForProperties(const IncomingCall& call) const {
    const auto object = objects_.find(call.path());
    if (object == objects_.end() || call.interface() != propertiesInterface) return false;
    MessageReader body = call.body();
    const auto interface = object->second.find(body.readText());
    if (interface == object->second.end()) return false;
    const Properties& properties = interface->second;
    if (call.member() == "GetAll") {
        call.answer(arguments(properties));
        return true;
    }
    if (call.member() != "Get") return false;
    const auto property = properties.find(body.readText());
    if (property == properties.end())
        call.refuse(unknownProperty, "There is no such property.");
    else
        call.answer(arguments(property->second));
    return true;
}

}  // namespace InkoraKit
