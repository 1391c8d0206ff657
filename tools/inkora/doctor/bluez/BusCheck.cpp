#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// Where the environment has put it, or nothing.
std::string placeInEnvironment() {
    const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return address && *address ? std::string(" (DBUS_SYSTEM_BUS_ADDRESS=") + address + ')' : "";
}

bool hasDaemonOfBus() {
    std::error_code none;
    return std::filesystem::exists("/usr/bin/dbus-daemon", none) ||
           std::filesystem::exists("/usr/bin/dbus-broker-launch", none);
}

Finding noBus(int error) {
    Finding finding{named::bus, Finding::State::fault};
    if (error == EACCES || error == EPERM) {
        finding.text = "this user may not connect to it" + placeInEnvironment();
        return finding;
    }
    finding.text =
        "there is none" + placeInEnvironment() + ": " + std::generic_category().message(error);
    if (!placeInEnvironment().empty()) return finding;
    finding.advice = "A container needs its host's /run/dbus.";
    finding.remedy = hasDaemonOfBus() ? remedies::start("dbus") : remedies::install("dbus");
    return finding;
}

}  // namespace

Findings lookAtBus(Machine& machine) {
    try {
        machine.bus = std::make_unique<Bus>([&machine](int error) {
            machine.busError = error;
            machine.bus.reset();
        });
    } catch (const std::system_error& error) {
        return {noBus(error.code().value())};
    }
    const auto error = machine.ask(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames",
        [&](MessageReader& body) { machine.namesOnBus = body.readTexts(); });
    if (machine.busError != 0) return {noBus(machine.busError)};
    if (error)
        return {{named::bus, Finding::State::fault, "does not answer" + placeInEnvironment()}};
    return {{named::bus, Finding::State::ok, "answers" + placeInEnvironment()}};
}

}  // namespace InkoraTool
