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

void removeAdapter(FakeBluez& fake) {
    fake.remove(FakeBluez::pen, ObjectTree::device);
    fake.remove(FakeBluez::hci0, ObjectTree::adapter);
}

// --- strangers on the bus -----------------------------------------------------------------------

TEST_F(BluezRadioTest, NobodyElseSpeaksForBluez) {
    linkPen(true);
    radio->startScan();
    settle();
    FakeBluez stranger(bus->address());
    stranger.addressee = fake->caller;
    const std::function<void()> forgeries[] = {
        [&] { stranger.changeValue(colour, Data{1}); },
        [&] { stranger.endLink(); },
        [&] { stranger.switchAdapter(false); },
        [&] { stranger.addPen(heard); },
        [&] { removeAdapter(stranger); },
        [&] { stranger.claimThatOwnerChanged(":1.1", ""); },
        [&] { stranger.claimThatOwnerChanged(":1.1", ":1.9"); },
    };
    for (const auto& forge : forgeries) {
        forge();
        // The end of a link is told a moment later.
        EXPECT_EQ(reports(1), Lines()) << &forge - forgeries;
    }
    notify(2);
    EXPECT_EQ(reports(), Lines{"1F14 notified <02>"});
}

// --- much and often -----------------------------------------------------------------------------

std::ptrdiff_t entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

TEST_F(BluezRadioTest, TenLinksLeaveNothingBehind) {
    const auto descriptors = entriesOf("/proc/self/fd");
    const auto threads = entriesOf("/proc/self/task");
    for (int i = 0; i < 10; ++i) {
        linkPen(true);
        notify(1);
        if (i % 2 == 0) {
            fake->endLink();
        } else {
            fake->remove(FakeBluez::pen, ObjectTree::device);
        }
        EXPECT_EQ(reports(1), (Lines{"1F14 notified <01>", "disconnected with error"}));
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
}

TEST_F(BluezRadioTest, CrowdDoesNotStarveThePen) {
    linkPen(true);
    radio->startScan();
    settle();
    Lines expected;
    for (int i = 1000; i < 4000; ++i) {
        const std::string last = std::to_string(i).substr(1, 2);
        fake->add("/org/bluez/hci0/dev_C6_00_00_00_00_" + last, ObjectTree::device,
                  {{"Address", "C6:00:00:00:00:" + last},
                   {"AddressType", std::string("random")},
                   {"RSSI", std::int16_t{-50}}});
        expected.emplace_back("sighted without a name");
        if (i % 100 != 0) continue;
        notify(1);
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
    int asked = 0;
    fake->on("GetManagedObjects", [&](const std::string&) { ++asked; });
    radio = std::make_unique<BluezRadio>();
    radio->start(record);
    EXPECT_EQ(reports(35), Lines{"adapter state 2"});
    EXPECT_EQ(asked, 4);
    fake->replyError("GetManagedObjects", "org.bluez.Error.Failed", "Not yet");
    fake->on("GetManagedObjects", nullptr);
    EXPECT_EQ(reports(10), Lines{"adapter state 5"});
}

TEST_F(BluezRadioTest, NobodyStartsTheDaemonAgain) {
    fake.reset();
    ASSERT_TRUE(reported("adapter state 1"));
    EXPECT_EQ(bus->starts(), 0);
    ASSERT_TRUE(until([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));  // until it has run
        return bus->starts() == 1;
    }));
    settle(30);
    EXPECT_EQ(bus->starts(), 1);
    EXPECT_EQ(RunLoop::main().timeUntilDue(), std::nullopt);
    fake = std::make_unique<FakeBluez>(bus->address());
    fake->addAdapter();
    EXPECT_TRUE(reported("adapter state 5"));
}

TEST_F(BluezRadioTest, ScanMovesToTheAdapterThatIsOn) {
    Lines started;
    fake->on("StartDiscovery", [&](const std::string& path) {
        started.push_back(path);
        fake->reply("StartDiscovery");
    });
    radio->startScan();
    settle();
    fake->addAdapter("/org/bluez/hci1", "00:AA:01:00:00:43");
    settle();
    fake->switchAdapter(false);
    EXPECT_EQ(reports(), Lines());
    fake->remove("/org/bluez/hci1", ObjectTree::adapter);
    EXPECT_EQ(reports(), Lines{"adapter state 4"});
    fake->remove(FakeBluez::hci0, ObjectTree::adapter);
    fake->addAdapter("/org/bluez/hci2");
    EXPECT_EQ(reports(), Lines{"adapter state 5"});
    radio->startScan();
    settle();
    fake->remove("/org/bluez/hci2", ObjectTree::adapter);
    EXPECT_EQ(reports(10), (Lines{"adapter state 1", "adapter state 2"}));
    EXPECT_EQ(started, (Lines{FakeBluez::hci0, "/org/bluez/hci1", "/org/bluez/hci2"}));
}

TEST_F(BluezRadioTest, SecondAdapterStandsInForAMoment) {
    fake->addAdapter("/org/bluez/hci1", "00:AA:01:00:00:43");
    linkPen();
    fake->endLink();
    fake->switchAdapter(false);
    fake->switchAdapter(true);
    EXPECT_EQ(reports(), Lines{"disconnected with error"});
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
         fake.endLink();
         fake.switchAdapter(false);
         fake.switchAdapter(true);
     },
     "adapter state 4"},
    {"AdapterIsUnpluggedAndPlugged",
     [](FakeBluez& fake) {
         fake.endLink();
         fake.switchAdapter(false);
         removeAdapter(fake);
         fake.addAdapter(FakeBluez::hci0, FakeBluez::hci0Address, false);
         fake.switchAdapter(true);
     },
     "adapter state 4"},
    {"AdapterIsGoneAndBackInAMoment",
     [](FakeBluez& fake) {
         removeAdapter(fake);
         fake.addAdapter();
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
    if (stage == "Scanning") radio->startScan();
    if (stage == "Connected") linkPen();
    if (stage == "Connecting" || stage == "Discovering") {
        fake->hold("Connect");
        addPen();
        radio->connect(pen);
        settle();
        if (stage == "Discovering") fake->changePen({{"Connected", true}});
    }
    record.take();
    if (disturbance.happen) {
        disturbance.happen(*fake);
    } else {
        fake.reset();
        settle();
        fake = std::make_unique<FakeBluez>(bus->address());
        fake->addAdapter();
    }
    EXPECT_EQ(reports(), (Lines{disturbance.told, "adapter state 5"}));
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
