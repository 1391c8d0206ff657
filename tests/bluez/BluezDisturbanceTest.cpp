#include "BluezRadioTest.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iterator>
#include <tuple>
#include <utility>
#include <vector>

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

// --- nobody else speaks for bluetoothd ----------------------------------------------------------

TEST_F(BluezRadioTest, StrangerSpeaksToTheHostItself) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    fake->hold("ReadValue");
    radio->read(pen, record.handleOf(colourUUID));
    ASSERT_TRUE(called("ReadValue"));
    settle();
    record.take();

    FakeBluez stranger(bus->address());
    stranger.addressee = fake->caller;
    const std::vector<std::pair<const char*, std::function<void()>>> forgeries = {
        {"value",
         [&] {
             stranger.change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});
         }},
        {"lost link",
         [&] {
             stranger.change(FakeBluez::pen, ObjectTree::device, {{"Connected", false}});
         }},
        {"adapter switched off",
         [&] {
             stranger.change(FakeBluez::hci0, ObjectTree::adapter, {{"Powered", false}});
         }},
        {"another advertiser",
         [&] {
             stranger.add("/org/bluez/hci0/dev_00_11_22_33_44_56", ObjectTree::device,
                          {{"Address", std::string("00:11:22:33:44:56")},
                           {"AddressType", std::string("public")},
                           {"RSSI", std::int16_t{-40}}});
         }},
        {"device removed", [&] { stranger.remove(FakeBluez::pen, ObjectTree::device); }},
        {"adapter removed", [&] { stranger.remove(FakeBluez::hci0, ObjectTree::adapter); }},
        {"bluetoothd gone", [&] { stranger.claimThatOwnerChanged(":1.1", ""); }},
        {"another bluetoothd", [&] { stranger.claimThatOwnerChanged(":1.1", ":1.9"); }},
        {"answer", [&] { stranger.answerInAnothersPlace(Data{2}); }},
    };
    for (const auto& [name, forge] : forgeries) {
        SCOPED_TRACE(name);
        forge();
        stranger.sync();
        settle();
        EXPECT_EQ(record.take(), Lines());
    }
    fake->replyBytes("ReadValue", Data{3});
    EXPECT_TRUE(reported("1F14 read <03>"));
}

// --- much and often -----------------------------------------------------------------------------

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator all(folder);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
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
        EXPECT_EQ(record.take(),
                  (Lines{"1F14 subscribed", "1F14 notified <01>", "disconnected with error"}));
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
}

TEST_F(BluezRadioTest, CrowdDoesNotStarveThePen) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    ASSERT_TRUE(reported("1F14 subscribed"));
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    record.take();
    Lines values;
    for (int round = 0; round < 10; ++round) {
        for (int i = 0; i < 500; ++i) {
            char text[18];
            std::snprintf(text, sizeof text, "C6:00:00:00:%02X:%02X", i / 256, i % 256);
            std::string path = std::string("/org/bluez/hci0/dev_") + text;
            std::ranges::replace(path, ':', '_');
            if (round == 0)
                fake->add(path, ObjectTree::device,
                          {{"Address", std::string(text)}, {"AddressType", std::string("random")}});
            fake->change(path, ObjectTree::device, {{"RSSI", static_cast<std::int16_t>(-i)}});
        }
        fake->change(colour, ObjectTree::characteristic,
                     {{"Value", Data{static_cast<std::uint8_t>(round)}}});
        values.push_back("1F14 notified <0" + std::to_string(round) + ">");
    }
    std::size_t most = 0;
    EXPECT_TRUE(until([&] {
        const std::size_t before = record.lines.size();
        RunLoop::main().runOnce();
        most = std::max(most, record.lines.size() - before);
        return record.has(values.back());
    }));
    EXPECT_LE(most, 64u);  // in one turn; then others have theirs
    EXPECT_EQ(std::erase(record.lines, "sighted without a name"), 5000u);
    EXPECT_EQ(record.lines, values);
}

// --- bluetoothd and its adapters come and go ----------------------------------------------------

struct Disturbance {
    const char* name;
    void (*happen)(FakeBluez& fake);  // null: bluetoothd is killed and started again
    RadioRecord::Lines told;
};

void removeAdapter(FakeBluez& fake) {
    fake.remove(FakeBluez::pen, ObjectTree::device);
    fake.remove(FakeBluez::hci0, ObjectTree::adapter);
}

const Disturbance disturbances[] = {
    {"AdapterSwitchedOffAndOn",
     [](FakeBluez& fake) {
         endLink(fake);
         switchAdapter(fake, false);
         switchAdapter(fake, true);
     },
     {"adapter state 4", "adapter state 5"}},
    {"AdapterUnpluggedAndPlugged",
     [](FakeBluez& fake) {
         endLink(fake);
         switchAdapter(fake, false);
         removeAdapter(fake);
         fake.addAdapter(FakeBluez::hci0, address, false);
         switchAdapter(fake, true);
     },
     {"adapter state 4", "adapter state 5"}},
    {"AdapterGoneAndBackInAMoment",
     [](FakeBluez& fake) {
         removeAdapter(fake);
         fake.addAdapter(FakeBluez::hci0, address, true);
     },
     {"adapter state 1", "adapter state 5"}},
    {"DaemonKilledAndStarted", nullptr, {"adapter state 1", "adapter state 5"}},
};

TEST_F(BluezRadioTest, DaemonIsSilentAtFirst) {
    fake->isSilent = true;
    radio = std::make_unique<BluezRadio>();
    radio->start(record);
    for (int asked = 1; asked <= 4; ++asked) {
        ASSERT_TRUE(until([&] { return fake->timesAskedForObjects == asked; }));
        skip(10);
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
    skip(5);
    ASSERT_TRUE(until([&] { return bus->starts() == 1; }));
    for (int i = 0; i < 5; ++i) {
        skip(5);
        RunLoop::main().runFor(0.01);
    }
    EXPECT_EQ(bus->starts(), 1);
    fake = std::make_unique<FakeBluez>(bus->address());
    fake->addAdapter(FakeBluez::hci0, address, true);
    EXPECT_TRUE(reported("adapter state 5"));
}

// A scan does not stay on an adapter that is off, nor does one in use give way to another.
TEST_F(BluezRadioTest, ScanMovesToTheAdapterThatIsOn) {
    const std::string hci1 = "/org/bluez/hci1";
    Lines started;
    startRadio();
    fake->on("StartDiscovery", [&](const std::string& path) {
        started.push_back(path);
        fake->reply("StartDiscovery");
    });
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    fake->addAdapter(hci1, "00:AA:01:00:00:43", true);
    settle();
    switchAdapter(*fake, false);
    ASSERT_TRUE(called("StartDiscovery", 2));
    EXPECT_EQ(record.take(), Lines());
    fake->remove(hci1, ObjectTree::adapter);  // and nothing but one that is off is left
    ASSERT_TRUE(reported("adapter state 4"));
    fake->remove(FakeBluez::hci0, ObjectTree::adapter);
    fake->addAdapter("/org/bluez/hci2", address, true);
    ASSERT_TRUE(reported("adapter state 5"));
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery", 3));
    EXPECT_EQ(started, (Lines{FakeBluez::hci0, hci1, "/org/bluez/hci2"}));
}

enum class Stage { idle, scanning, connecting, discovering, connected };

class BluezDisturbanceTest : public BluezRadioTest,
                             public testing::WithParamInterface<std::tuple<Stage, Disturbance>> {
protected:
    void reach(Stage stage) {
        if (stage == Stage::idle) return;
        if (stage == Stage::connected) return linkPen();
        if (stage == Stage::scanning) {
            radio->startScan();
            ASSERT_TRUE(called("StartDiscovery"));
            return;
        }
        fake->hold("Connect");
        addPen();
        radio->connect(pen);
        ASSERT_TRUE(called("Connect"));
        if (stage == Stage::connecting) return;
        fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
        fake->reply("Connect");
    }
};

TEST_P(BluezDisturbanceTest, IsToldOnceAndThePenIsBack) {
    const auto& [stage, disturbance] = GetParam();
    startRadio();
    reach(stage);
    record.take();
    if (disturbance.happen) {
        disturbance.happen(*fake);
    } else {
        fake.reset();
        ASSERT_TRUE(reported("adapter state 1"));
        fake = std::make_unique<FakeBluez>(bus->address());
        fake->addAdapter(FakeBluez::hci0, address, true);
    }
    ASSERT_TRUE(reported("adapter state 5"));
    settle();
    EXPECT_EQ(record.take(), disturbance.told);
    radio->stopScan();
    linkPen();
}

std::string nameOf(const testing::TestParamInfo<std::tuple<Stage, Disturbance>>& test) {
    const char* const stages[] = {"Idle", "Scanning", "Connecting", "Discovering", "Connected"};
    const auto& [stage, disturbance] = test.param;
    return std::string(disturbance.name) + stages[static_cast<int>(stage)];
}

INSTANTIATE_TEST_SUITE_P(AtEveryStage, BluezDisturbanceTest,
                         testing::Combine(testing::Values(Stage::idle, Stage::scanning,
                                                          Stage::connecting, Stage::discovering,
                                                          Stage::connected),
                                          testing::ValuesIn(disturbances)),
                         nameOf);

}  // namespace
}  // namespace InkoraKit
