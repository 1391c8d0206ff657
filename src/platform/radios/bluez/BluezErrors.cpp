#include "platform/radios/bluez/BluezErrors.h"

#include "platform/bluetooth/RadioErrors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace InkoraKit::bluezErrors {
namespace {

// How BlueZ names errors of the attribute protocol (Bluetooth Core Specification, Vol 3, Part F,
// 3.4.1.1); the others come with their number in the text.
struct NamedError {
    std::string_view name;
    std::string_view text;  // empty: any
    int code;
};
constexpr std::array<NamedError, 6> namedErrors = {{
    {"org.bluez.Error.NotPermitted", "Read not permitted", 0x02},
    {"org.bluez.Error.NotPermitted", "Write not permitted", 0x03},
    {"org.bluez.Error.NotPermitted", "Not paired", 0x05},
    {"org.bluez.Error.NotSupported", "", 0x06},
    {"org.bluez.Error.InvalidOffset", "", 0x07},
    {"org.bluez.Error.NotAuthorized", "", 0x08},
}};

// Errors of Connect by their names, and by the beginnings of their texts, which are the same since
// 5.62. What is not here is permanent.
struct NamedFailure {
    std::string_view start;
    ConnectFailure failure;
};
constexpr std::array<NamedFailure, 18> connectFailures = {{
    {"org.bluez.Error.AlreadyConnected", ConnectFailure::none},
    {"le-connection-already-connected", ConnectFailure::none},
    {"org.bluez.Error.InProgress", ConnectFailure::busy},
    {"org.bluez.Error.NotReady", ConnectFailure::busy},
    {"Operation already in progress", ConnectFailure::busy},
    {"le-connection-adapter-not-powered", ConnectFailure::busy},
    {"le-connection-busy", ConnectFailure::busy},
    {"le-connection-concurrent-connection-limit", ConnectFailure::busy},
    {"org.freedesktop.DBus.Error.UnknownObject", ConnectFailure::busy},  // not told of it yet
    {"org.freedesktop.DBus.Error.UnknownMethod", ConnectFailure::busy},
    {"le-connection-abort-by-local", ConnectFailure::transient},
    {"le-connection-abort-by-remote", ConnectFailure::transient},
    {"le-connection-create-socket", ConnectFailure::transient},
    {"le-connection-link-layer-protocol-error", ConnectFailure::transient},
    {"le-connection-memory-allocation", ConnectFailure::transient},
    {"le-connection-timeout", ConnectFailure::transient},
    {"le-connection-unknown", ConnectFailure::transient},
    {"br-connection-canceled", ConnectFailure::transient},  // also of Bluetooth LE
}};

std::optional<int> attributeCode(const BusError& error) {
    for (const NamedError& named : namedErrors) {
        if (named.name != error.name) continue;
        if (named.text.empty() || named.text == error.text) return named.code;
    }
    constexpr std::string_view marker = "ATT error: 0x";
    const auto position = error.text.find(marker);
    if (position == std::string::npos) return std::nullopt;
    int code = 0;
    const char* const digits = error.text.data() + position + marker.size();
    const auto read = std::from_chars(digits, error.text.data() + error.text.size(), code, 16);
    if (read.ptr == digits) return std::nullopt;
    return code;
}

}  // namespace

NSError connectionFailed(const std::string& text) {
    return radioErrors::error(CBError::connectionFailed, text);
}

// BlueZ 5.66 gives no reason on D-Bus: a link that was lost looks like one that was closed.
NSError peripheralDisconnected() {
    return radioErrors::peripheralDisconnected();
}

NSError rssiUnavailable(const std::string& text) {
    return radioErrors::error(CBError::operationNotSupported, text);
}

std::string textOf(const BusError& error) {
    std::string text = error.text;
    while (text.ends_with('\n')) text.pop_back();
    return text.empty() ? error.name : text;
}

NSError attributeError(const BusError& error) {
    if (const auto code = attributeCode(error))
        return radioErrors::attributeError(*code, textOf(error));
    return radioErrors::error(CBError::unknown, textOf(error));
}

bool isAccessDenied(const BusError& error) {
    return error.name == "org.freedesktop.DBus.Error.AccessDenied";
}

bool isNobody(const BusError& error) {
    return error.name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
           error.name == "org.freedesktop.DBus.Error.NameHasNoOwner";
}

ConnectFailure connectFailureOf(const BusError& error) {
    for (const NamedFailure& named : connectFailures)
        if (error.text.starts_with(named.start) || error.name == named.start) return named.failure;
    return ConnectFailure::permanent;
}

bool isNotSubscribed(const BusError& error) {
    return error.text == "No notify session started";
}

}  // namespace InkoraKit::bluezErrors
