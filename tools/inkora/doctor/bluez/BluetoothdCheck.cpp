#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// Where distributions install it.
constexpr std::array<const char*, 4> places = {
    "/usr/libexec/bluetooth/bluetoothd",
    "/usr/lib/bluetooth/bluetoothd",
    "/usr/sbin/bluetoothd",
    "/usr/libexec/bluetoothd",
};

std::string installedProgram() {
    std::error_code none;
    for (const char* place : places)
        if (std::filesystem::exists(place, none)) return place;
    return {};
}

// "5.66"; empty where it does not say. The bus has nothing that tells the version of what runs.
std::string versionOf(const std::string& program) {
    if (program.empty()) return {};
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(
        ::popen((program + " --version 2>/dev/null").c_str(), "r"), ::pclose);
    std::array<char, 32> line{};
    if (!output || !std::fgets(line.data(), static_cast<int>(line.size()), output.get())) return {};
    const std::string version(line.data());
    const auto length = version.find_first_not_of("0123456789.");
    return version.substr(0, length);
}

bool kernelHasBluetooth() {
    std::error_code none;
    return std::filesystem::is_directory("/sys/class/bluetooth", none);
}

bool doesBusOfferToStartIt(Machine& machine) {
    std::vector<std::string> names;
    machine.ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                "ListActivatableNames", [&](MessageReader& body) { names = body.readTexts(); });
    return std::ranges::find(names, "org.bluez") != names.end();
}

Finding notRunning(Machine& machine, const std::string& version) {
    Finding finding{named::bluetoothd, Finding::State::fault};
    finding.text = version.empty() ? "does not run" : version + " is installed, but does not run";
    if (doesBusOfferToStartIt(machine)) finding.text += "; the bus offers to start it";
    // BlueZ's unit for systemd has this as its condition.
    if (kernelHasBluetooth())
        finding.remedy = remedies::start("bluetooth");
    else
        finding.advice = "The kernel has no Bluetooth: plug an adapter in first.";
    return finding;
}

}  // namespace

Findings lookAtBluetoothd(Machine& machine) {
    const std::string program = installedProgram();
    const std::string version = versionOf(program);
    if (machine.isOnBus("org.bluez")) {
        const std::string installed = version.empty() ? "" : "; " + version + " is installed";
        return {{named::bluetoothd, Finding::State::ok, "runs" + installed}};
    }
    if (!program.empty()) return {notRunning(machine, version)};
    return {{named::bluetoothd, Finding::State::fault, "neither runs nor is installed",
             remedies::install("bluez"), "The package is called bluez."}};
}

}  // namespace InkoraTool
