#include "FakeBluez.h"

#include <InkoraKit/platform/RunLoop.h>

#include "PrivateBus.h"
#include "platform/bus/MessageReader.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <type_traits>
#include <utility>

namespace InkoraKit {
namespace {

constexpr const char* objectManager = "org.freedesktop.DBus.ObjectManager";

template <class Fill>
void within(sd_bus_message* message, char kind, const std::string& contents, Fill fill) {
    sd_bus_message_open_container(message, kind, contents.c_str());
    fill();
    sd_bus_message_close_container(message);
}

void append(sd_bus_message* message, const Variant& value);
void append(sd_bus_message* message, const Properties& properties);
void append(sd_bus_message* message, const Interfaces& interfaces);

template <class Map>
void appendMap(sd_bus_message* message, const std::string& entry, const Map& map) {
    within(message, 'a', "{" + entry + "}", [&] {
        for (const auto& each : map)
            within(message, 'e', entry, [&] {
                if constexpr (std::is_same_v<typename Map::key_type, std::string>)
                    sd_bus_message_append_basic(message, entry.front(), each.first.c_str());
                else
                    sd_bus_message_append_basic(message, entry.front(), &each.first);
                append(message, each.second);
            });
    });
}

// An alternative that stands for no type of interest goes out as a number of another type.
void append(sd_bus_message* message, const Variant& value) {
    if (const auto* truth = std::get_if<bool>(&value)) {
        sd_bus_message_append(message, "v", "b", static_cast<int>(*truth));
    } else if (const auto* number = std::get_if<std::int16_t>(&value)) {
        sd_bus_message_append(message, "v", "n", static_cast<int>(*number));
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        sd_bus_message_append(message, "v", "s", text->c_str());
    } else if (const auto* texts = std::get_if<std::vector<std::string>>(&value)) {
        within(message, 'v', "as", [&] {
            within(message, 'a', "s", [&] {
                for (const std::string& each : *texts)
                    sd_bus_message_append(message, "s", each.c_str());
            });
        });
    } else if (const auto* data = std::get_if<Data>(&value)) {
        within(message, 'v', "ay",
               [&] { sd_bus_message_append_array(message, 'y', data->data(), data->size()); });
    } else if (const auto* byCompany = std::get_if<std::map<std::uint16_t, Data>>(&value)) {
        within(message, 'v', "a{qv}", [&] { appendMap(message, "qv", *byCompany); });
    } else {
        sd_bus_message_append(message, "v", "i", -60);
    }
}

void append(sd_bus_message* message, const Properties& properties) {
    appendMap(message, "sv", properties);
}

void append(sd_bus_message* message, const Interfaces& interfaces) {
    appendMap(message, "sa{sv}", interfaces);
}

}  // namespace

FakeBluez::FakeBluez(const std::string& busAddress) : bus_(PrivateBus::connect(busAddress)) {
    sd_bus_add_filter(
        bus_.get(), nullptr,
        [](sd_bus_message* message, void* self, sd_bus_error*) {
            return static_cast<FakeBluez*>(self)->received(message);
        },
        this);
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
    sd_bus_message* signal = newSignal("/", objectManager, "InterfacesAdded");
    sd_bus_message_append(signal, "o", path.c_str());
    append(signal, Interfaces{{interface, properties}});
    send(signal);
}

void FakeBluez::remove(const std::string& path, const std::string& interface) {
    objects_[path].erase(interface);
    if (objects_[path].empty()) objects_.erase(path);
    sd_bus_message* signal = newSignal("/", objectManager, "InterfacesRemoved");
    sd_bus_message_append(signal, "oas", path.c_str(), 1, interface.c_str());
    send(signal);
}

void FakeBluez::change(const std::string& path, const std::string& interface,
                       const Properties& changed, const std::vector<std::string>& invalidated) {
    Properties& properties = objects_[path][interface];
    for (const auto& [name, value] : changed) properties.insert_or_assign(name, value);
    for (const std::string& name : invalidated) properties.erase(name);
    sd_bus_message* signal =
        newSignal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged");
    sd_bus_message_append(signal, "s", interface.c_str());
    append(signal, changed);
    within(signal, 'a', "s", [&] {
        for (const std::string& name : invalidated)
            sd_bus_message_append(signal, "s", name.c_str());
    });
    send(signal);
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

sd_bus_message* FakeBluez::newSignal(const std::string& path, const char* interface,
                                     const char* member) {
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus_.get(), &signal, path.c_str(), interface, member);
    return signal;
}

// --- calls --------------------------------------------------------------------------------------

int FakeBluez::received(sd_bus_message* message) {
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

void FakeBluez::sendObjects() {
    sd_bus_message* answer = nullptr;
    sd_bus_message_new_method_return(takeHeld("GetManagedObjects").get(), &answer);
    appendMap(answer, "oa{sa{sv}}", objects_);
    send(answer);
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
    sd_bus_message_append_array(answer, 'y', value.data(), value.size());
    send(answer);
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

void FakeBluez::send(sd_bus_message* message) {
    if (!addressee.empty()) sd_bus_message_set_destination(message, addressee.c_str());
    sd_bus_send(bus_.get(), message, nullptr);
    sd_bus_message_unref(message);
}

// --- what any user of the bus may do ------------------------------------------------------------

void FakeBluez::claimThatOwnerChanged(const std::string& oldOwner, const std::string& newOwner) {
    sd_bus_message* signal =
        newSignal("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged");
    sd_bus_message_append(signal, "sss", "org.bluez", oldOwner.c_str(), newOwner.c_str());
    send(signal);
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
