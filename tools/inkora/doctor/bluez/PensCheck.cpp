#include "doctor/bluez/Checks.h"

#include <InkoraKit/platform/CBAdvertisementData.h>
#include <InkoraKit/platform/CBCentralManager.h>
#include <InkoraKit/platform/CBManagerStateReason.h>
#include <InkoraKit/platform/RunLoop.h>

#include "link/PenName.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr double longestStart = 15;  // seconds until the kit knows how the adapter is
constexpr std::int64_t unknown = 127;

struct Advertiser {
    std::string name;
    std::int64_t rssi = unknown;
};

class Listener final : public CBCentralManagerDelegate {
public:
    void centralManagerDidUpdateState(CBCentralManager& central) override {
        if (central.state() == CBManagerState::poweredOn) central.scanForPeripherals();
    }

    void centralManagerDidDiscoverPeripheral(CBCentralManager&,
                                             const std::shared_ptr<CBPeripheral>& peripheral,
                                             const Dictionary& advertisement,
                                             const NSNumber& rssi) override {
        Advertiser& advertiser = heard[peripheral->identifier()];
        advertiser.rssi = rssi.integerValue();
        const auto entry = advertisement.find(CBAdvertisementDataLocalNameKey);
        if (entry == advertisement.end()) return;
        advertiser.name = entry->second.as<std::string>().value_or(advertiser.name);
    }

    std::map<UUID, Advertiser> heard;
};

std::string textOf(const Advertiser& pen) {
    const std::string strength =
        pen.rssi == unknown ? "of unknown strength" : std::to_string(pen.rssi) + " dBm";
    return shown(pen.name) + ' ' + strength;
}

// Those that are nearest first.
std::vector<Advertiser> pensAmong(const std::map<UUID, Advertiser>& heard) {
    std::vector<Advertiser> pens;
    for (const auto& [identifier, advertiser] : heard)
        if (isPenName(advertiser.name)) pens.push_back(advertiser);
    const auto distance = [](const Advertiser& pen) {
        return pen.rssi == unknown ? unknown : -pen.rssi;
    };
    std::ranges::sort(pens, {}, distance);
    return pens;
}

std::string numberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", number);
    return text.data();
}

std::string othersText(std::size_t count) {
    if (count == 0) return "no other device";
    return std::to_string(count) + (count == 1 ? " other device" : " other devices");
}

Finding findingOf(const std::map<UUID, Advertiser>& heard, double seconds) {
    constexpr std::size_t mostPens = 3;
    const std::vector<Advertiser> pens = pensAmong(heard);
    const std::string others = othersText(heard.size() - pens.size());
    if (pens.empty())
        return {named::pens, Finding::State::fault,
                "none heard in " + numberText(seconds) + " s; " + others, "",
                "Switch the pen on and bring it near; one that is connected elsewhere, to a phone "
                "perhaps, is not heard."};
    std::string text;
    for (std::size_t i = 0; i < std::min(pens.size(), mostPens); ++i)
        text += (i == 0 ? "" : ", ") + textOf(pens[i]);
    if (pens.size() > mostPens) text += ", " + std::to_string(pens.size() - mostPens) + " more";
    return {named::pens, Finding::State::ok, text + "; " + others};
}

}  // namespace

Findings listenForPens(Machine& machine) {
    const auto listener = std::make_shared<Listener>();
    CBCentralManager central(listener);
    const auto isKnown = [&] { return central.state() != CBManagerState::unknown; };
    machine.waiting.until(isKnown, longestStart);
    const auto isOff = [&] { return central.state() != CBManagerState::poweredOn; };
    if (isOff() || machine.waiting.until(isOff, machine.listening)) {
        machine.meaning = ExitStatus::noBluetooth;
        return {{named::pens, Finding::State::fault,
                 "cannot be listened for: " + std::string(description(central.stateReason()))}};
    }
    return {findingOf(listener->heard, machine.listening)};
}

}  // namespace InkoraTool
