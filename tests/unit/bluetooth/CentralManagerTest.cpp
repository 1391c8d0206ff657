#include "support/PenScenario.h"
#include "support/ScriptedRadio.h"

#include <InkoraKit/platform/CBAdvertisementData.h>

#include <algorithm>

namespace InkoraKit {
namespace {

using Words = std::vector<std::string>;

/// Writes down every callback, and keeps the peripherals that it hears of.
struct Listener : CBCentralManagerDelegate, CBPeripheralDelegate {
    void centralManagerDidUpdateState(CBCentralManager& central) override {
        note("state " + std::to_string(static_cast<int>(central.state())));
    }
    void centralManagerDidDiscoverPeripheral(CBCentralManager&,
                                             const std::shared_ptr<CBPeripheral>& found,
                                             const Dictionary& advertisement,
                                             const NSNumber& rssi) override {
        peripheral = found;
        const auto name = advertisement.find(CBAdvertisementDataLocalNameKey);
        note("found " + (name == advertisement.end() ? "-" : *name->second.as<std::string>()) +
             " " + rssi.stringValue());
    }
    void centralManagerDidConnectPeripheral(
        CBCentralManager&, const std::shared_ptr<CBPeripheral>& connected) override {
        EXPECT_EQ(connected->state(), CBPeripheralState::connected);
        note("connected");
        if (onConnected) onConnected();
    }
    void centralManagerDidFailToConnectPeripheral(CBCentralManager&,
                                                  const std::shared_ptr<CBPeripheral>& failed,
                                                  const std::optional<NSError>& error) override {
        EXPECT_EQ(failed->state(), CBPeripheralState::disconnected);
        note("failed " + std::to_string(error->code()));
    }
    void centralManagerDidDisconnectPeripheral(CBCentralManager&,
                                               const std::shared_ptr<CBPeripheral>&,
                                               const std::optional<NSError>& error) override {
        note("disconnected " + (error ? std::to_string(error->code()) : "-"));
    }
    void peripheralDidDiscoverServices(const std::shared_ptr<CBPeripheral>& on,
                                       const std::optional<NSError>& error) override {
        std::string text = error ? "services failed" : "services";
        if (on->services())
            for (const auto& service : *on->services()) text += " " + service->uuid().uuidString();
        note(text);
    }
    void peripheralDidDiscoverCharacteristicsForService(const std::shared_ptr<CBPeripheral>&,
                                                        const std::shared_ptr<CBService>& service,
                                                        const std::optional<NSError>&) override {
        std::string text = "characteristics";
        for (const auto& one : *service->characteristics()) text += " " + one->uuid().uuidString();
        note(text);
    }
    void peripheralDidReadRSSI(const std::shared_ptr<CBPeripheral>&, const NSNumber& rssi,
                               const std::optional<NSError>&) override {
        note("rssi " + rssi.stringValue());
    }
    void peripheralDidUpdateValueForCharacteristic(const std::shared_ptr<CBPeripheral>&,
                                                   const std::shared_ptr<CBCharacteristic>& changed,
                                                   const std::optional<NSError>& error) override {
        note((error ? "error, value " : "value ") +
             (changed->value() ? "[" + changed->value()->hexEncodedString() + "]" : "absent"));
    }
    void peripheralDidUpdateNotificationStateForCharacteristic(
        const std::shared_ptr<CBPeripheral>&, const std::shared_ptr<CBCharacteristic>& changed,
        const std::optional<NSError>& error) override {
        note(std::string("notifying ") + (error                    ? "failed"
                                          : changed->isNotifying() ? "on"
                                                                   : "off"));
    }

    void note(std::string text) { heard.push_back(std::move(text)); }
    Words heard;
    std::shared_ptr<CBPeripheral> peripheral;
    std::function<void()> onConnected;
};

class CentralManagerTest : public testing::Test {
protected:
    CentralManagerTest() {
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        ScriptedRadio::install();
        manager = std::make_shared<CBCentralManager>(listener);
    }
    ~CentralManagerTest() override { installRadio({}); }

    Words run() {
        RunLoop::main().runFor(0);
        return std::exchange(listener->heard, {});
    }
    static ScriptedRadio& radio() { return *ScriptedRadio::opened(); }
    static RadioListener& events() { return *radio().events; }

    void powerOn() {
        run();
        events().adapterStateChanged(CBManagerState::poweredOn);
        run();
    }
    void find() {
        powerOn();
        manager->scanForPeripherals();
        events().sighted(sighting("Pen"));
        run();
        manager->stopScan();
        ASSERT_TRUE(peripheral());
        peripheral()->setDelegate(listener);
    }
    void connect() {
        find();
        manager->connect(peripheral());
        events().connected(id);
        ASSERT_EQ(run(), Words{"connected"});
    }
    /// Connected, with one service (handle 1) of two characteristics (handles 2 and 3).
    void discover() {
        connect();
        peripheral()->discoverServices({});
        events().servicesDiscovered(id, {{1, CBUUID("1F1F")}}, {});
        peripheral()->discoverCharacteristics({}, peripheral()->services()->at(0));
        events().characteristicsDiscovered(id, 1, {{2, CBUUID("1F14")}, {3, CBUUID("1F17")}}, {});
        run();
        radio().take();
    }
    std::shared_ptr<CBPeripheral>& peripheral() { return listener->peripheral; }
    std::shared_ptr<CBCharacteristic> characteristic() {
        return peripheral()->services()->at(0)->characteristics()->at(0);
    }
    Sighting sighting(std::optional<std::string> name, int rssi = -50) const {
        Sighting seen{.identifier = id, .name = {}, .advertisement = {}, .rssi = rssi};
        seen.advertisement.localName = std::move(name);
        return seen;
    }
    static std::string misuse(const std::function<void()>& command) {
        testing::internal::CaptureStderr();
        command();
        return testing::internal::GetCapturedStderr();
    }

    const UUID id;
    const NSError error{"radio", 9};
    std::shared_ptr<Listener> listener = std::make_shared<Listener>();
    std::shared_ptr<CBCentralManager> manager;
};

TEST_F(CentralManagerTest, TheStateIsUnknownAtFirstAndThenToldOncePerChange) {
    EXPECT_EQ(manager->state(), CBManagerState::unknown);
    EXPECT_EQ(run(), Words{});
    events().adapterStateChanged(CBManagerState::poweredOff);
    EXPECT_EQ(listener->heard, Words{}) << "never inside the radio's call";
    EXPECT_EQ(run(), Words{"state 4"});
    events().adapterStateChanged(CBManagerState::poweredOff);
    events().adapterStateChanged(CBManagerState::poweredOn);
    EXPECT_EQ(run(), Words{"state 5"});
}

TEST_F(CentralManagerTest, CommandsWithoutPowerAreReportedAndLeaveNoTrace) {
    run();
    const std::string lines = misuse([this] {
        manager->scanForPeripherals();
        manager->stopScan();
        manager->connect(nullptr);
    });
    EXPECT_TRUE(lines.starts_with("API MISUSE: <CBCentralManager: 0x"));
    EXPECT_EQ(std::ranges::count(lines, '\n'), 3);
    EXPECT_FALSE(manager->isScanning());
    events().adapterStateChanged(CBManagerState::poweredOn);
    EXPECT_EQ(run(), Words{"state 5"});
    EXPECT_EQ(radio().take(), Words{});
}

TEST_F(CentralManagerTest, AnAdvertiserIsReportedOnceInAScanAndAgainWhenItsNameComesOrChanges) {
    powerOn();
    manager->scanForPeripherals();
    EXPECT_TRUE(manager->isScanning());
    for (const auto& name :
         {std::optional<std::string>(), std::optional<std::string>(),
          std::optional<std::string>("Pen"), std::optional<std::string>(),
          std::optional<std::string>("Pen"), std::optional<std::string>("Pen 2")})
        events().sighted(sighting(name));
    EXPECT_EQ(run(), (Words{"found - -50", "found Pen -50", "found Pen 2 -50"}));
    Sighting forced = sighting("Pen 2", -40);
    forced.reportEvenIfKnown = true;
    events().sighted(forced);
    EXPECT_EQ(run(), Words{"found Pen 2 -40"});
    const auto first = peripheral();
    manager->scanForPeripherals();
    events().sighted(sighting("Pen 2"));
    EXPECT_EQ(run(), Words{}) << "still the same scan";
    manager->stopScan();
    manager->scanForPeripherals();
    events().sighted(sighting("Pen 2"));
    EXPECT_EQ(run(), Words{"found Pen 2 -50"});
    EXPECT_EQ(peripheral(), first) << "one device is one object";
}

TEST_F(CentralManagerTest, AReportStillQueuedWhenTheScanIsStoppedIsDropped) {
    powerOn();
    manager->scanForPeripherals();
    events().sighted(sighting("Pen"));
    manager->stopScan();
    EXPECT_FALSE(manager->isScanning());
    manager->scanForPeripherals();
    EXPECT_EQ(run(), Words{});
    manager->stopScan();
    events().sighted(sighting("Pen"));
    EXPECT_EQ(run(), Words{});
}

TEST_F(CentralManagerTest, AScanForServicesReportsThoseThatAnnounceOneEvenLate) {
    powerOn();
    manager->scanForPeripherals({CBUUID("1F1F"), CBUUID("180F")});
    events().sighted(sighting("Pen"));
    EXPECT_EQ(run(), Words{});
    Sighting announcing = sighting("Pen");
    announcing.advertisement.serviceUUIDs = {CBUUID("1234"), CBUUID("1F1F")};
    events().sighted(announcing);
    EXPECT_EQ(run(), Words{"found Pen -50"});
}

TEST_F(CentralManagerTest,
       APendingConnectionThatIsCancelledEndsAtOnceAndItsLateOutcomeCountsForNothing) {
    find();
    manager->connect(peripheral());
    manager->connect(peripheral());
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::connecting);
    events().connected(id);
    manager->cancelPeripheralConnection(peripheral());
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::disconnected);
    manager->connect(peripheral());
    EXPECT_EQ(run(), Words{"disconnected -"});
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::connecting);
    EXPECT_EQ(radio().take(), (Words{"scan", "stop", "connect", "disconnect", "connect"}));
    events().connectionFailed(id, error);
    EXPECT_EQ(run(), Words{"failed 9"});
}

TEST_F(CentralManagerTest, ALinkEndsWithOneReportWhoeverEndsIt) {
    connect();
    manager->connect(peripheral());
    EXPECT_EQ(run(), Words{"connected"}) << "again, since it is";
    manager->cancelPeripheralConnection(peripheral());
    manager->cancelPeripheralConnection(peripheral());
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::disconnecting);
    manager->connect(peripheral());
    EXPECT_EQ(run(), Words{});
    events().disconnected(id, {});
    EXPECT_EQ(run(), Words{"disconnected -"});
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::connecting) << "asked for meanwhile";
    events().connected(id);
    events().disconnected(id, error);
    events().disconnected(id, error);
    EXPECT_EQ(run(), (Words{"connected", "disconnected 9"}));
    manager->cancelPeripheralConnection(peripheral());
    EXPECT_EQ(run(), Words{}) << "a lost link has nothing to cancel";
    EXPECT_EQ(radio().take(), (Words{"scan", "stop", "connect", "disconnect", "connect"}));
}

TEST_F(CentralManagerTest, WithoutPowerLinksEndInSilence) {
    discover();
    events().valueRead(id, 2, Data{1}, {});
    events().adapterStateChanged(CBManagerState::resetting);
    EXPECT_EQ(peripheral()->state(), CBPeripheralState::disconnected);
    EXPECT_FALSE(peripheral()->services());
    EXPECT_EQ(run(), Words{"state 1"});
    events().adapterStateChanged(CBManagerState::poweredOn);
    run();
    EXPECT_FALSE(manager->isScanning());
    manager->connect(peripheral());
    events().connected(id);
    EXPECT_EQ(run(), Words{"connected"});
}

TEST_F(CentralManagerTest, APeripheralThatNobodyKeepsLosesItsPendingConnection) {
    find();
    manager->connect(peripheral());
    EXPECT_NE(misuse([this] { peripheral().reset(); }).find("Cancelling connection for unused"),
              std::string::npos);
    EXPECT_EQ(radio().take().back(), "disconnect");
    events().connected(id);
    EXPECT_EQ(run(), Words{});
}

TEST_F(CentralManagerTest, APeripheralLetGoWhileItsLinkIsBeingEndedIsStillReported) {
    connect();
    manager->cancelPeripheralConnection(peripheral());
    peripheral().reset();
    events().disconnected(id, {});
    EXPECT_EQ(run(), Words{"disconnected -"});
}

TEST_F(CentralManagerTest, DiscoveryAddsWhatWasAskedForAndTellsNoneFromUnknown) {
    connect();
    EXPECT_FALSE(peripheral()->services());
    peripheral()->discoverServices({CBUUID("9999")});
    peripheral()->discoverServices({CBUUID("1F1F")});
    peripheral()->discoverServices({CBUUID("1F1F"), CBUUID("180F")});
    const std::vector<RemoteService> table = {
        {1, CBUUID("180F")}, {4, CBUUID("1F1F")}, {7, CBUUID("1F1F")}};
    for (int i = 0; i < 4; ++i) events().servicesDiscovered(id, table, {});
    EXPECT_EQ(peripheral()->services()->size(), 3u);
    RunLoop::main().runFor(0);
    EXPECT_EQ(listener->heard.size(), 3u) << "one answer to each call";
    listener->heard.clear();
    const auto service = peripheral()->services()->at(0);
    EXPECT_FALSE(service->characteristics());
    peripheral()->discoverCharacteristics({CBUUID("2A19")}, service);
    events().characteristicsDiscovered(id, 4, {{5, CBUUID("1F14")}}, {});
    EXPECT_EQ(run(), Words{"characteristics"});
    EXPECT_TRUE(service->characteristics()->empty());
}

TEST_F(CentralManagerTest, ADiscoveryThatFailsLeavesTheListAbsent) {
    connect();
    peripheral()->discoverServices({});
    events().servicesDiscovered(id, {}, error);
    EXPECT_EQ(run(), Words{"services failed"});
    EXPECT_FALSE(peripheral()->services());
}

TEST_F(CentralManagerTest, ValuesArriveInOrderAndAFailedReadKeepsTheLast) {
    discover();
    EXPECT_FALSE(characteristic()->value());
    peripheral()->setNotifyValue(true, characteristic());
    events().valueRead(id, 2, Data{1}, {});
    events().valueNotified(id, 2, Data{2});
    events().valueRead(id, 2, Data{3}, error);
    events().subscriptionChanged(id, 2, true, {});
    events().valueNotified(id, 2, Data());
    events().valueNotified(id, 2, std::nullopt);
    EXPECT_FALSE(characteristic()->value()) << "changes with its callback";
    EXPECT_EQ(run(), (Words{"value [01]", "value [02]", "error, value [02]", "notifying on",
                            "value []", "value absent"}));
    peripheral()->setNotifyValue(true, characteristic());
    EXPECT_EQ(run(), Words{"notifying on"});
    peripheral()->setNotifyValue(false, characteristic());
    events().valueNotified(id, 2, Data{4});
    events().subscriptionChanged(id, 2, false, {});
    EXPECT_EQ(run(), Words{"notifying off"});
    EXPECT_EQ(radio().take(), (Words{"subscribe 2", "unsubscribe 2"}));
}

TEST_F(CentralManagerTest, NotificationsThatNobodyAskedForAreDropped) {
    discover();
    events().valueNotified(id, 2, Data{1});
    EXPECT_EQ(run(), Words{});
    peripheral()->setNotifyValue(true, characteristic());
    events().subscriptionChanged(id, 2, false, error);
    events().valueNotified(id, 2, Data{1});
    EXPECT_EQ(run(), Words{"notifying failed"});
}

TEST_F(CentralManagerTest, WhatBelongsToAnEarlierLinkIsIgnored) {
    discover();
    const auto relic = characteristic();
    const auto relicService = peripheral()->services()->at(0);
    events().valueRead(id, 2, Data{1}, {});
    events().disconnected(id, error);
    EXPECT_EQ(run(), (Words{"value [01]", "disconnected 9"}));
    manager->connect(peripheral());
    events().connected(id);
    run();
    radio().take();
    EXPECT_NE(misuse([&] {
                  peripheral()->readValue(relic);
                  peripheral()->readValue(nullptr);
                  peripheral()->setNotifyValue(true, relic);
                  peripheral()->discoverCharacteristics({}, relicService);
              }),
              "");
    events().valueRead(id, 2, Data{1}, {});
    EXPECT_EQ(run(), Words{});
    EXPECT_EQ(radio().take(), Words{});
}

TEST_F(CentralManagerTest, ASignalStrengthIsTheRadiosOrNone) {
    connect();
    peripheral()->readRSSI();
    peripheral()->readRSSI();
    events().rssiRead(id, -57, {});
    events().rssiRead(id, std::nullopt, error);
    EXPECT_EQ(run(), Words{"rssi -57"});
}

TEST_F(CentralManagerTest, TheManagerMayEndInsideItsOwnCallback) {
    find();
    listener->onConnected = [this] { manager.reset(); };
    manager->connect(peripheral());
    events().connected(id);
    events().disconnected(id, error);
    EXPECT_EQ(run(), Words{"connected"});
    EXPECT_EQ(ScriptedRadio::opened(), nullptr);
    EXPECT_NE(misuse([this] { peripheral()->readRSSI(); }), "");
}

TEST_F(CentralManagerTest, TheEngineReadsEachCharacteristicBeforeItSubscribes) {
    const auto handler = std::make_shared<OpenHandler>();
    handler->startInkoraHandler();
    powerOn();
    events().sighted(sighting("InkoraPen"));
    run();
    events().connected(id);
    run();
    events().servicesDiscovered(id, {{1, CBUUID("1F1F")}}, {});
    run();
    events().characteristicsDiscovered(
        id, 1, {{4, CBUUID("1F17")}, {3, CBUUID("2A19")}, {2, CBUUID("1F14")}}, {});
    run();
    EXPECT_EQ(radio().take(),
              (Words{"scan", "stop", "connect", "rssi", "services", "characteristics 1", "read 4",
                     "subscribe 4", "read 2", "subscribe 2"}));
}

}  // namespace
}  // namespace InkoraKit
