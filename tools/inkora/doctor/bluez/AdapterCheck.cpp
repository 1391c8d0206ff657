#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"
#include "platform/radios/bluez/RadioSwitch.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* everything = "/org/bluez";
constexpr std::size_t mostAdapters = 3;

Finding findingOf(const Machine& machine, const std::string& adapter) {
    const std::string label =
        nameOfObject(adapter) + ' ' +
        machine.objects.valueOf<std::string>(adapter, ObjectTree::adapter, "Address");
    Finding finding{named::adapter, Finding::State::fault};
    if (!machine.objects.mayBe("central", adapter)) {
        finding.text = label + " has no Bluetooth LE, or no central role";
        finding.advice = "See ControllerMode in /etc/bluetooth/main.conf.";
    } else if (machine.objects.isPowered(adapter)) {
        return {named::adapter, Finding::State::ok, label + " is on"};
    } else if (const RadioBlock block = radioBlockOf(adapter); block == RadioBlock::hard) {
        finding.text = label + " is blocked by a switch or key of the machine";
        finding.advice = "Flip that (rfkill list shows it).";
    } else if (block == RadioBlock::soft) {
        finding.text = label + " is blocked";
        finding.remedy = remedies::unblock();
    } else {
        finding.text = label + " is off";
        finding.remedy = "bluetoothctl power on";
    }
    return finding;
}

// "hci0"; empty where the kernel has none.
std::string adapterOfKernel() {
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator("/sys/class/bluetooth", none))
        return entry.path().filename().string();
    return {};
}

Finding noAdapter() {
    if (const std::string adapter = adapterOfKernel(); !adapter.empty())
        return {named::adapter, Finding::State::fault, "bluetoothd does not take " + adapter,
                remedies::restartBluetoothd(),
                "Its log says why (journalctl -u bluetooth); if it does not, start it anew:"};
    return {named::adapter, Finding::State::fault, "the kernel has none",
            remedies::asRoot("dmesg | grep -i -e bluetooth -e firmware"),
            "Plug one in. For one that is in, the kernel's log says what it lacks:"};
}

// bluetoothd takes its name on the bus before it shows its adapters: half a second was seen.
void waitForAdapters(Machine& machine) {
    for (double waited = 0; waited < machine.patience; ++waited) {
        if (!machine.objects.below(everything, ObjectTree::adapter).empty()) return;
        if (adapterOfKernel().empty()) return;
        machine.waiting.until([] { return false; }, 1);
        machine.askForObjects();
    }
}

}  // namespace

Findings lookAtAdapters(Machine& machine) {
    waitForAdapters(machine);
    Findings findings;
    bool isUsable = false;
    for (const std::string& adapter : machine.objects.below(everything, ObjectTree::adapter)) {
        findings.push_back(findingOf(machine, adapter));
        if (findings.back().state != Finding::State::ok || isUsable) continue;
        isUsable = true;
        machine.adapter = adapter;
        std::swap(findings.front(), findings.back());  // the one that is used
    }
    if (findings.empty()) return {noAdapter()};
    if (findings.size() > mostAdapters) {
        const std::size_t more = findings.size() - mostAdapters;
        findings.resize(mostAdapters);
        findings.back().text += "; " + std::to_string(more) + " more";
    }
    for (auto finding = findings.begin() + 1; finding != findings.end(); ++finding) {
        // Beside one that can be used the others do not matter, and one remedy is for all.
        if (isUsable) *finding = {named::adapter, Finding::State::ok, finding->text};
        if (finding->remedy == findings.front().remedy) finding->remedy.clear();
    }
    return findings;
}

}  // namespace InkoraTool
