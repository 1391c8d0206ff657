#include "FakeBluez.h"

#include <InkoraKit/platform/RunLoop.h>

#include "PrivateBus.h"
#include "platform/bus/MessageReader.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

}  // namespace

FakeBluez::FakeBluez(const std::string& busAddress) : bus_(PrivateBus::connect(busAddress)) {
    sd_bus_add_filter(
        bus_.get(), nullptr,
        [](sd_bus_message* message, void* self, sd_bus_error*) {
            return static_cast<FakeBluez*>(self)->received(message);
        },
        this);
    sd_bus_add_match(bus_.get(), nullptr, "type='signal',path_namespace='/inkora'", nullptr,
                     nullptr);
    sd_bus_request_name(bus_.get(), "org.bluez", 0);
    RunLoop::main().addSource(*this);
}

FakeBluez::~FakeBluez() {
    RunLoop::main().removeSource(*this);
}

// --- objects ------------------------------------------------------------------------------------

void FakeBluez::addSilently(const std::string& path, const std::string& interface,
                            const Properties& properties) {
    objects_[path][interface] = properties;
}

void FakeBluez::add(const std::string& path, const std::string& interface,
                    const Properties& properties) {
    addSilently(path, interface, properties);
    emit("/", objectManager, "InterfacesAdded",
         arguments(ObjectPath{path}, Interfaces{{interface, properties}}));
}

void FakeBluez::remove(const std::string& path, const std::string& interface) {
    objects_[path].erase(interface);
    if (objects_[path].empty()) objects_.erase(path);
    emit("/", objectManager, "InterfacesRemoved",
         arguments(ObjectPath{path}, std::vector{interface}));
}

void FakeBluez::change(const std::string& path, const std::string& interface,
                       const Properties& changed, const std::vector<std::string>& invalidated) {
    Properties& properties = objects_[path][interface];
    for (const auto& [name, value] : changed) properties.insert_or_assign(name, value);
    for (const std::string& name : invalidated) properties.erase(name);
    emit(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
         arguments(interface, changed, invalidated));
}

void FakeBluez::addAdapter(const std::string& path, const std::string& address, bool isPowered) {
    add(path, ObjectTree::adapter,
        {{"Address", address},
         {"Powered", isPowered},
         {"Discovering", false},
         {"Roles", std::vector<std::string>{"central", "peripheral"}}});
}

void FakeBluez::switchAdapter(bool on) {
    change(hci0, ObjectTree::adapter, {{"Powered", on}, {"Discovering", false}});
}

Properties FakeBluez::penProperties(const Properties& more) {
    Properties properties = {{"Address", std::string(penAddress)},
                             {"AddressType", std::string("public")},
                             {"Alias", std::string("00-11-22-33-44-55")},
                             {"Connected", false},
                             {"ServicesResolved", false}};
    for (const auto& [name, value] : more) properties.insert_or_assign(name, value);
    return properties;
}

void FakeBluez::addPen(const Properties& more) {
    add(pen, ObjectTree::device, penProperties(more));
}

void FakeBluez::changePen(const Properties& changed, const std::vector<std::string>& invalidated) {
    change(pen, ObjectTree::device, changed, invalidated);
}

void FakeBluez::changeValue(const std::string& characteristic, const Data& value) {
    change(characteristic, ObjectTree::characteristic, {{"Value", value}});
}

void FakeBluez::endLink() {
    changePen({{"ServicesResolved", false}, {"Connected", false}});
}

void FakeBluez::emit(const std::string& path, const char* interface, const char* member,
                     const Arguments& arguments) {
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus_.get(), &signal, path.c_str(), interface, member);
    send(signal, arguments);
}

// --- calls --------------------------------------------------------------------------------------

int FakeBluez::received(sd_bus_message* message) {
    if (sd_bus_message_is_signal(message, nullptr, "PropertiesChanged") > 0) recordValue(message);
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    caller = sd_bus_message_get_sender(message);
    const std::string member = sd_bus_message_get_member(message);
    if (member == "Ping") return 0;  // sd_bus answers that
    if (member != "GetManagedObjects") {
        calls.push_back(member);
        lastPath = sd_bus_message_get_path(message);
    }
    if (sd_bus_message_has_signature(message, "a{sv}") > 0)
        lastOptions = MessageReader(message).readProperties();
    if (member == "Set") setProperty(message);
    held_[member].emplace_back(sd_bus_message_ref(message), sd_bus_message_unref);
    if (const Method method = methods_[member]) {
        method(sd_bus_message_get_path(message));
    } else if (member == "GetManagedObjects") {
        sendObjects();
    } else {
        reply(member);
    }
    return 1;
}

void FakeBluez::setProperty(sd_bus_message* message) {
    const char *interface = nullptr, *property = nullptr, *text = nullptr;
    sd_bus_message_read(message, "ssv", &interface, &property, "s", &text);
    change(sd_bus_message_get_path(message), interface, {{property, std::string(text)}});
}

void FakeBluez::recordValue(sd_bus_message* message) {
    MessageReader reader(message);
    reader.readText();
    const Properties changed = reader.readProperties();
    if (const Data* value = find<Data>(changed, "Value"))
        told.push_back(reader.path() + ' ' + value->hexEncodedString());
}

void FakeBluez::ask(const std::string& path, const char* interface, const char* member,
                    const Arguments& arguments) {
    sd_bus_message* call = nullptr;
    sd_bus_message_new_method_call(bus_.get(), &call, caller.c_str(), path.c_str(), interface,
                                   member);
    MessageWriter writer(call);
    if (arguments) arguments(writer);
    const auto answered = [](sd_bus_message* answer, void* self, sd_bus_error*) {
        const sd_bus_error* error = sd_bus_message_get_error(answer);
        const bool hasBytes = sd_bus_message_has_signature(answer, "ay") > 0;
        static_cast<FakeBluez*>(self)->answers.push_back(
            error      ? error->name
            : hasBytes ? MessageReader(answer).readBytes().hexEncodedString()
                       : sd_bus_message_get_signature(answer, true));
        return 0;
    };
    sd_bus_call_async(bus_.get(), nullptr, call, answered, this, 0);
    sd_bus_message_unref(call);
}

void FakeBluez::sendObjects() {
    sd_bus_message* answer = nullptr;
    sd_bus_message_new_method_return(takeHeld("GetManagedObjects").get(), &answer);
    send(answer, arguments(objects_));
}

void FakeBluez::hold(const std::string& member) {
    on(member, [](const std::string&) {});
}

void FakeBluez::on(const std::string& member, Method method) {
    methods_.insert_or_assign(member, std::move(method));
}

FakeBluez::Message FakeBluez::takeHeld(const std::string& member) {
    std::vector<Message>& held = held_[member];
    if (held.empty()) return nullptr;
    Message call = held.front();
    held.erase(held.begin());
    return call;
}

void FakeBluez::reply(const std::string& member) {
    if (const Message call = takeHeld(member)) sd_bus_reply_method_return(call.get(), nullptr);
}

void FakeBluez::replyBytes(const std::string& member, const Data& value) {
    const Message call = takeHeld(member);
    if (!call) return;
    sd_bus_message* answer = nullptr;
    sd_bus_message_new_method_return(call.get(), &answer);
    send(answer, arguments(value));
}

void FakeBluez::replyError(const std::string& member, const char* name, const char* text) {
    if (const Message call = takeHeld(member))
        sd_bus_reply_method_errorf(call.get(), name, "%s", text);
}

std::size_t FakeBluez::count(const std::string& member) const {
    return static_cast<std::size_t>(std::ranges::count(calls, member));
}

void FakeBluez::answerSomebodyElse() {
    sd_bus_emit_signal(bus_.get(), "/elsewhere", "org.example.Other", "Answer", nullptr);
}

void FakeBluez::send(sd_bus_message* message, const Arguments& arguments) {
    MessageWriter writer(message);
    arguments(writer);
    if (!addressee.empty()) sd_bus_message_set_destination(message, addressee.c_str());
    sd_bus_send(bus_.get(), message, nullptr);
    sd_bus_message_unref(message);
}

// --- what any user of the bus may do ------------------------------------------------------------

void FakeBluez::claimThatOwnerChanged(const std::string& oldOwner, const std::string& newOwner) {
    emit("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged",
         arguments(std::string("org.bluez"), oldOwner, newOwner));
}

// --- the run loop -------------------------------------------------------------------------------

int FakeBluez::descriptor() const {
    return sd_bus_get_fd(bus_.get());
}

RunLoopSource::Interest FakeBluez::interest() const {
    const int events = sd_bus_get_events(bus_.get());
    return events > 0 && (events & POLLOUT) != 0 ? Interest::both : Interest::readable;
}

// Whatever sd_bus has read ahead is processed within `service`.
std::optional<double> FakeBluez::deadline() const {
    return std::nullopt;
}

void FakeBluez::service() {
    while (sd_bus_process(bus_.get(), nullptr) > 0) {
    }
}

}  // namespace InkoraKit
