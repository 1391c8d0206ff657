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

namespace InkoraKit {

/// A radio on a bluetoothd of ours, with one adapter, powered on. The cases wait for what is to
/// happen; that something does not happen is seen by what comes after it.
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

    void startRadio();
    /// The pen is known to BlueZ, and everybody has heard of that.
    void addPen(const Properties& more = {});
    static Properties serviceProperties();
    static Properties colourProperties();
    void addColour();
    void resolveServices();
    void linkPen();
    /// Lets everything arrive that is on its way.
    void settle() { RunLoop::main().runFor(0.001); }

    static constexpr const char* service = "/org/bluez/hci0/dev_00_11_22_33_44_55/service0015";
    static constexpr const char* colour =
        "/org/bluez/hci0/dev_00_11_22_33_44_55/service0015/char0016";

    static constexpr const char* elsewhere = "/org/bluez/hci0/dev_5A_00_00_00_00_01";

    const UUID pen = DeviceAddress::fromText(FakeBluez::penAddress, "public")->identifier();
    RadioRecord record;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FakeBluez> fake;
    std::unique_ptr<BluezRadio> radio;
};

}  // namespace InkoraKit
