#pragma once

#include <InkoraKit/platform/RunLoop.h>

#include "FakeBluez.h"
#include "PrivateBus.h"
#include "platform/radios/bluez/BluezRadio.h"
#include "platform/radios/bluez/DeviceAddress.h"
#include "platform/radios/bluez/ObjectTree.h"
#include "support/RadioRecord.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace InkoraKit {

/// A radio on a bluetoothd of ours, with one adapter, powered on.
class BluezRadioTest : public testing::Test {
protected:
    using Lines = RadioRecord::Lines;

    void SetUp() override;

    template <class Condition>
    bool until(Condition condition) {
        for (int i = 0; i < 1000 && !condition(); ++i) RunLoop::main().runOnce(0.1);
        return condition();
    }
    bool reported(const std::string& line) {
        return until([&] { return record.has(line); });
    }
    bool called(const std::string& member, std::size_t times = 1) {
        return until([&] { return fake->count(member) >= times; });
    }

    /// Everything arrives that is on its way, and as much time passes.
    void settle(double seconds = 0.001) { RunLoop::main().runFor(seconds); }
    /// What the radio has reported, and called, since the last look.
    Lines reports(double seconds = 0.001) {
        settle(seconds);
        return record.take();
    }
    Lines calls(double seconds = 0.001) {
        settle(seconds);
        return std::exchange(fake->calls, {});
    }

    /// On a bus with a bluetoothd, anew.
    void startRadio();
    void addPen() {
        fake->addPen();
        settle();
    }
    static Properties serviceProperties();
    static Properties colourProperties();
    void addColour();
    void resolveServices();
    /// The pen is known and linked, its colour subscribed to if that is wanted.
    void linkPen(bool subscribes = false);
    void notify(std::uint8_t value) { fake->changeValue(colour, Data{value}); }

    static constexpr const char* service = "/org/bluez/hci0/dev_00_11_22_33_44_55/service0015";
    static constexpr const char* colour =
        "/org/bluez/hci0/dev_00_11_22_33_44_55/service0015/char0016";

    const UUID pen = DeviceAddress::fromText(FakeBluez::penAddress, "public")->identifier();
    const Properties heard = {{"RSSI", std::int16_t{-60}}};
    RadioRecord record;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FakeBluez> fake;
    std::unique_ptr<BluezRadio> radio;
    AttributeHandle colourHandle = 0;
};

}  // namespace InkoraKit
