#include "BluezRadioTest.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <thread>
#include <tuple>

namespace InkoraKit {
namespace {

const CBUUID colourUUID("1F14");
constexpr const char* address = "00:AA:01:00:00:42";

void switchAdapter(FakeBluez& fake, bool on) {
    fake.change(FakeBluez::hci0, ObjectTree::adapter, {{"Powered", on}});
}

void endLink(FakeBluez& fake) {
    fake.change(FakeBluez::pen, ObjectTree::device,
                {{"ServicesResolved", false}, {"Connected", false}});
}

void removeAdapter(FakeBluez& fake) {
    fake.remove(FakeBluez::pen, ObjectTree::device);
    fake.remove(FakeBluez::hci0, ObjectTree::adapter);
}

// --- strangers on the bus -----------------------------------------------------------------------

TEST_F(BluezRadioTest, NobodyElseSpeaksForBluez) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio->startScan();
    settle();
    FakeBluez stranger(bus->address());
    stranger.addressee = fake->caller;
    const std::function<void()> forgeries[] = {
        [&] {
            stranger.change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});
        },
        [&] { endLink(stranger); },
        [&] { switchAdapter(stranger, false); },
        [&] {
            stranger.addPen({{"RSSI", std::int16_t{-1}}});
        },
        [&] { removeAdapter(stranger); },
        [&] { stranger.claimThatOwnerChanged(":1.1", ""); },
        [&] { stranger.claimThatOwnerChanged(":1.1", ":1.9"); },
    };
    for (const auto& forge : forgeries) {
        record.take();
        forge();
        RunLoop::main().runFor(1);  // the end of a link is told a moment later
        EXPECT_EQ(record.lines, Lines()) << &forge - forgeries;
    }
    fake->change(colour, ObjectTree::characteristic, {{"Value", Data{2}}});
    EXPECT_TRUE(reported("1F14 notified <02>"));
}

// --- much and often -----------------------------------------------------------------------------

std::ptrdiff_t entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

TEST_F(BluezRadioTest, TenLinksLeaveNothingBehind) {
    startRadio();
    const auto descriptors = entriesOf("/proc/self/fd");
    const auto threads = entriesOf("/proc/self/task");
    for (int i = 0; i < 10; ++i) {
        linkPen();
        radio->subscribe(pen, record.handleOf(colourUUID), true);
        ASSERT_TRUE(reported("1F14 subscribed"));
        fake->change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});
        endLink(*fake);
        ASSERT_TRUE(reported("disconnected with error"));
        EXPECT_EQ(std::ranges::count(record.lines, "1F14 notified <01>"), 1);
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
}

TEST_F(BluezRadioTest, CrowdDoesNotStarveThePen) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    ASSERT_TRUE(reported("1F14 subscribed"));
    record.take();
    Lines expected;
    for (int i = 1000; i < 4000; ++i) {
        const std::string last = std::to_string(i).substr(1, 2);
        fake->add("/org/bluez/hci0/dev_C6_00_00_00_00_" + last, ObjectTree::device,
                  {{"Address", "C6:00:00:00:00:" + last},
                   {"AddressType", std::string("random")},
                   {"RSSI", std::int16_t{-50}}});
        expected.emplace_back("sighted without a name");
        if (i % 100 != 0) continue;
        fake->change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});
        expected.emplace_back("1F14 notified <01>");
    }
    std::size_t most = 0;  // in one turn of the loop, after which others have theirs
    EXPECT_TRUE(until([&] {
        const std::size_t before = record.lines.size();
        RunLoop::main().runOnce();
        most = std::max(most, record.lines.size() - before);
        return record.lines.size() >= expected.size();
    }));
    EXPECT_LE(most, 64u + 1);  // and a value held back until then
    EXPECT_EQ(record.lines, expected);
}

// --- bluetoothd and its adapters come and go ----------------------------------------------------

TEST_F(BluezRadioTest, DaemonIsSilentAtFirst) {
    fake->isSilent = true;
    radio = std::make_unique<BluezRadio>();
    radio->start(record);
    for (int asked = 1; asked <= 4; ++asked) {
        ASSERT_TRUE(until([&] { return fake->timesAskedForObjects == asked; }));
        RunLoop::main().runFor(9.5);
    }
    EXPECT_EQ(record.lines, Lines{"adapter state 2"});
    fake->isSilent = false;
    EXPECT_TRUE(reported("adapter state 5"));
}

TEST_F(BluezRadioTest, NobodyStartsTheDaemonAgain) {
    startRadio();
    fake.reset();
    ASSERT_TRUE(reported("adapter state 1"));
    EXPECT_EQ(bus->starts(), 0);
    ASSERT_TRUE(until([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));  // until it has run
        return bus->starts() == 1;
    }));
    RunLoop::main().runFor(30);
    EXPECT_EQ(bus->starts(), 1);
    fake = std::make_unique<FakeBluez>(bus->address());
    fake->addAdapter(FakeBluez::hci0, address, true);
    EXPECT_TRUE(reported("adapter state 5"));
}

TEST_F(BluezRadioTest, ScanMovesToTheAdapterThatIsOn) {
    Lines started;
    startRadio();
    fake->on("StartDiscovery", [&](const std::string& path) {
        started.push_back(path);
        fake->reply("StartDiscovery");
    });
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    fake->addAdapter("/org/bluez/hci1", "00:AA:01:00:00:43", true);
    settle();
    switchAdapter(*fake, false);
    ASSERT_TRUE(called("StartDiscovery", 2));
    EXPECT_EQ(record.take(), Lines());
    fake->remove("/org/bluez/hci1", ObjectTree::adapter);
    ASSERT_TRUE(reported("adapter state 4"));
    fake->remove(FakeBluez::hci0, ObjectTree::adapter);
    fake->addAdapter("/org/bluez/hci2", address, true);
    ASSERT_TRUE(reported("adapter state 5"));
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery", 3));
    EXPECT_EQ(started, (Lines{FakeBluez::hci0, "/org/bluez/hci1", "/org/bluez/hci2"}));
}

TEST_F(BluezRadioTest, SecondAdapterStandsInForAMoment) {
    startRadio();
    fake->addAdapter("/org/bluez/hci1", "00:AA:01:00:00:43", true);
    linkPen();
    endLink(*fake);
    switchAdapter(*fake, false);
    switchAdapter(*fake, true);
    ASSERT_TRUE(reported("disconnected with error"));
    EXPECT_EQ(record.take(), Lines{"disconnected with error"});
    linkPen();
}

struct Disturbance {
    const char* name;
    void (*happen)(FakeBluez& fake);  // null: bluetoothd is killed and started again
    const char* told;
};

const Disturbance disturbances[] = {
    {"AdapterIsSwitchedOffAndOn",
     [](FakeBluez& fake) {
         endLink(fake);
         switchAdapter(fake, false);
         switchAdapter(fake, true);
     },
     "adapter state 4"},
    {"AdapterIsUnpluggedAndPlugged",
     [](FakeBluez& fake) {
         endLink(fake);
         switchAdapter(fake, false);
         removeAdapter(fake);
         fake.addAdapter(FakeBluez::hci0, address, false);
         switchAdapter(fake, true);
     },
     "adapter state 4"},
    {"AdapterIsGoneAndBackInAMoment",
     [](FakeBluez& fake) {
         removeAdapter(fake);
         fake.addAdapter(FakeBluez::hci0, address, true);
     },
     "adapter state 1"},
    {"DaemonIsKilledAndStarted", nullptr, "adapter state 1"},
};
const char* const stages[] = {"Idle", "Scanning", "Connecting", "Discovering", "Connected"};

class BluezDisturbanceTest
    : public BluezRadioTest,
      public testing::WithParamInterface<std::tuple<Disturbance, const char*>> {};

TEST_P(BluezDisturbanceTest, IsToldOnceAndThePenIsBack) {
    const auto& [disturbance, name] = GetParam();
    const std::string stage = name;
    startRadio();
    if (stage == "Scanning") radio->startScan();
    if (stage == "Connected") linkPen();
    if (stage == "Connecting" || stage == "Discovering") {
        fake->hold("Connect");
        addPen();
        radio->connect(pen);
        ASSERT_TRUE(called("Connect"));
        if (stage == "Discovering")
            fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
    }
    record.take();
    if (disturbance.happen) {
        disturbance.happen(*fake);
    } else {
        fake.reset();
        ASSERT_TRUE(reported(disturbance.told));
        fake = std::make_unique<FakeBluez>(bus->address());
        fake->addAdapter(FakeBluez::hci0, address, true);
    }
    ASSERT_TRUE(reported("adapter state 5"));
    settle();
    EXPECT_EQ(record.take(), (Lines{disturbance.told, "adapter state 5"}));
    radio->stopScan();
    linkPen();
}

INSTANTIATE_TEST_SUITE_P(AtEveryStage, BluezDisturbanceTest,
                         testing::Combine(testing::ValuesIn(disturbances),
                                          testing::ValuesIn(stages)),
                         [](const auto& test) {
                             return std::get<0>(test.param).name +
                                    std::string(std::get<1>(test.param));
                         });

}  // namespace
}  // namespace InkoraKit
