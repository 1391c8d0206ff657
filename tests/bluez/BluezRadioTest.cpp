#include "BluezRadioTest.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>

namespace InkoraKit {

using namespace std::string_literals;

void BluezRadioTest::SetUp() {
    if (!PrivateBus::isAvailable()) GTEST_SKIP() << "dbus-daemon is not installed";
    bus = std::make_unique<PrivateBus>();
    ASSERT_FALSE(bus->address().empty()) << "dbus-daemon did not start";
    fake = std::make_unique<FakeBluez>(bus->address());
    fake->addAdapter();
    startRadio();
}

void BluezRadioTest::startRadio() {
    radio = std::make_unique<BluezRadio>();
    radio->start(record);
    ASSERT_EQ(reports(), Lines{"adapter state 5"});
}

Properties BluezRadioTest::serviceProperties() {
    return {{"UUID", "00001f1f-0000-1000-8000-00805f9b34fb"s}, {"Primary", true}};
}

Properties BluezRadioTest::colourProperties() {
    return {{"UUID", "00001f14-0000-1000-8000-00805f9b34fb"s}, {"Flags", Lines{"read", "notify"}}};
}

void BluezRadioTest::addColour() {
    fake->addSilently(service, ObjectTree::service, serviceProperties());
    fake->addSilently(colour, ObjectTree::characteristic, colourProperties());
}

void BluezRadioTest::resolveServices() {
    fake->changePen({{"Connected", true}});
    fake->changePen({{"ServicesResolved", true}});
}

void BluezRadioTest::linkPen(bool subscribes) {
    addPen();
    addColour();
    fake->on("Connect", [this](const std::string&) {
        resolveServices();
        fake->reply("Connect");
    });
    radio->connect(pen);
    ASSERT_TRUE(reported("connected"));
    radio->discoverServices(pen);
    ASSERT_EQ(record.services.size(), 1u);
    radio->discoverCharacteristics(pen, record.services.front().handle);
    ASSERT_TRUE(record.has("characteristics 1F14"));
    colourHandle = record.handleOf(CBUUID("1F14"));
    if (subscribes) radio->subscribe(pen, colourHandle, true);
    reports();
    fake->calls.clear();
}

namespace {

// --- the adapter's state ------------------------------------------------------------------------

TEST_F(BluezRadioTest, BluetoothCannotBeUsed) {
    using enum CBManagerState;
    using Reason = CBManagerStateReason;
    const auto offAs = [this](const char* powerState) {
        fake->remove(FakeBluez::hci0, ObjectTree::adapter);
        fake->add("/org/bluez/hci9999", ObjectTree::adapter,  // which this machine does not have
                  {{"Powered", false}, {"PowerState", std::string(powerState)}});
    };
    struct Case {
        std::function<void()> arrange;
        CBManagerState state;
        CBManagerStateReason reason;
    };
    const Case cases[] = {
        {[] { ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1); }, unsupported,
         Reason::noBus},
        {[this] { fake.reset(); }, unsupported, Reason::noService},
        {[this] {
             fake.reset();
             bus.reset();
             bus = std::make_unique<PrivateBus>(true);
             fake = std::make_unique<FakeBluez>(bus->address());
         },
         unauthorized, Reason::notPermitted},
        {[&] { offAs("off"); }, poweredOff, Reason::switchedOff},
        {[&] { offAs("off-enabling"); }, poweredOff, Reason::switchedOff},
        {[&] { offAs("off-blocked"); }, poweredOff, Reason::blocked},
        {[this] {
             fake->change(FakeBluez::hci0, ObjectTree::adapter, {{"Roles", Lines{"peripheral"}}});
         },
         unsupported, Reason::noAdapter},
        {[this] { fake->remove(FakeBluez::hci0, ObjectTree::adapter); }, unsupported,
         Reason::noAdapter},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases);
        radio.reset();
        fake.reset();
        bus.reset();
        SetUp();
        radio.reset();
        each.arrange();
        radio = std::make_unique<BluezRadio>();
        radio->start(record);
        EXPECT_TRUE(until([&] { return !record.lines.empty(); }));
        const auto state = std::to_string(static_cast<int>(each.state));
        EXPECT_EQ(record.take(), Lines{"adapter state " + state});
        EXPECT_EQ(radio->stateReason(), each.reason);
    }
    fake->addAdapter();
    EXPECT_EQ(reports(), Lines{"adapter state 5"});
    EXPECT_EQ(radio->stateReason(), Reason::none);
    bus.reset();
    EXPECT_EQ(reports(), Lines{"adapter state 1"});
}

// --- scanning -----------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ScanIsStoppedBeforeItHasStarted) {
    fake->hold("SetDiscoveryFilter");
    fake->hold("StartDiscovery");
    radio->startScan();
    EXPECT_EQ(calls(), Lines{"SetDiscoveryFilter"});
    EXPECT_EQ(fake->lastOptions, (Properties{{"Transport", "le"s}}));
    fake->reply("SetDiscoveryFilter");
    EXPECT_EQ(calls(), Lines{"StartDiscovery"});
    radio->stopScan();
    radio->startScan();
    radio->stopScan();
    fake->reply("StartDiscovery");
    EXPECT_EQ(calls(), Lines{"StopDiscovery"});
}

TEST_F(BluezRadioTest, DiscoveryIsRefused) {
    fake->hold("StartDiscovery");
    radio->startScan();
    settle();
    fake->replyError("StartDiscovery", "org.bluez.Error.InProgress",  // an old scan's
                     "Operation already in progress");
    ASSERT_TRUE(called("StartDiscovery", 2));
    fake->replyError("StartDiscovery", "org.freedesktop.DBus.Error.AccessDenied", "Rejected");
    EXPECT_EQ(reports(), Lines{"adapter state 3"});
    EXPECT_EQ(radio->stateReason(), CBManagerStateReason::notPermitted);
    fake->switchAdapter(false);
    fake->switchAdapter(true);
    EXPECT_EQ(reports(), (Lines{"adapter state 4", "adapter state 5"}));
}

TEST_F(BluezRadioTest, KnownDeviceIsReportedWhenItIsHeard) {
    fake->addPen({{"Name", "InkoraPen"s}});
    startRadio();
    radio->startScan();
    EXPECT_EQ(reports(), Lines());
    fake->changePen(heard);
    ASSERT_EQ(reports(), Lines{"sighted InkoraPen"});
    EXPECT_EQ(record.sightings.back().rssi, -60);
    EXPECT_EQ(record.sightings.back().identifier, pen);
    fake->changePen({}, {"RSSI"});
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BluezRadioTest, NameComesLaterThanTheDevice) {
    radio->startScan();
    settle();
    fake->addPen({{"RSSI", std::int16_t{-60}},
                  {"ManufacturerData", std::map<std::uint16_t, Data>{{0x1234, Data{0x56}}}}});
    ASSERT_EQ(reports(), Lines{"sighted without a name"});  // and not with its Alias, the address
    EXPECT_EQ(record.sightings.back().advertisement.manufacturerData, (Data{0x34, 0x12, 0x56}));
    fake->changePen({{"RSSI", std::int16_t{-61}}, {"Name", "InkoraPen"s}});
    EXPECT_EQ(reports(), Lines{"sighted InkoraPen"});
}

TEST_F(BluezRadioTest, OwnNameDiffersFromTheAdvertisedOne) {
    linkPen();
    fake->changePen({{"Name", "Advertised"s}, {"RSSI", std::int16_t{-60}}});
    fake->changePen({}, {"RSSI"});
    fake->changePen({{"Name", "Own"s}});
    fake->endLink();
    EXPECT_EQ(reports(2), (Lines{"name Own", "disconnected with error"}));

    // A shortened name in the next advertisement leaves the property as the link has made it.
    radio->startScan();
    settle();
    fake->changePen(heard);
    ASSERT_EQ(reports(), Lines{"sighted Advertised"});
    EXPECT_EQ(record.sightings.back().name, "Own");
    fake->changePen({{"RSSI", std::int16_t{-60}}, {"Name", "Renamed"s}});
    ASSERT_EQ(reports(), Lines{"sighted Renamed"});

    // Linked by somebody else, and back as an object, it has not advertised since.
    fake->changePen({{"Connected", true}, {"Name", "Own"s}}, {"RSSI"});
    fake->remove(FakeBluez::pen, ObjectTree::device);
    reports();
    radio->stopScan();
    radio->startScan();
    settle();
    fake->addPen({{"Connected", true}, {"Name", "Own"s}});
    EXPECT_EQ(reports(), Lines{"sighted Renamed"});
}

TEST_F(BluezRadioTest, LinkedPenIsFoundOnceAndTakenOver) {
    fake->addPen({{"Name", "InkoraPen"s}, {"Connected", true}, {"ServicesResolved", true}});
    addColour();
    startRadio();
    for (int scans = 0; scans < 2; ++scans) {
        radio->stopScan();
        radio->startScan();
        settle();
        fake->changePen({{"Connected", true}});
        EXPECT_EQ(reports(), Lines{"sighted InkoraPen"});
        EXPECT_EQ(record.sightings.back().rssi, 127);
    }
    radio->connect(pen);
    ASSERT_TRUE(reported("connected"));
    record.take();
    radio->stopScan();
    radio->startScan();
    fake->changePen({{"Connected", true}});
    EXPECT_EQ(reports(), Lines());  // it is ours now
    radio.reset();
    EXPECT_TRUE(called("Disconnect"));
}

TEST_F(BluezRadioTest, PropertiesHaveTypesNobodyExpects) {
    linkPen(true);
    radio->startScan();
    settle();
    fake->change(colour, ObjectTree::characteristic, {{"Value", "text"s}});
    fake->changePen({{"RSSI", std::monostate()}});
    fake->changePen({{"Connected", "no"s}});
    EXPECT_EQ(reports(), Lines());
}

// --- connecting ---------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ScanGivesWayToAConnection) {
    fake->hold("StopDiscovery");
    addPen();
    addColour();
    radio->startScan();
    settle();
    radio->connect(pen);
    EXPECT_EQ(calls(), (Lines{"SetDiscoveryFilter", "StartDiscovery", "StopDiscovery"}));
    fake->replyError("StopDiscovery", "org.bluez.Error.Failed", "No discovery started");
    EXPECT_EQ(calls(), Lines{"Connect"});
    resolveServices();
    EXPECT_EQ(reports(), Lines{"connected"});
    EXPECT_EQ(calls(), (Lines{"SetDiscoveryFilter", "StartDiscovery"}));  // still wanted
}

TEST_F(BluezRadioTest, DeviceIsRemovedWhileItIsConnectedTo) {
    fake->hold("Connect");  // never answered, as of a device that goes
    addPen();
    radio->connect(pen);
    settle();
    fake->remove(FakeBluez::pen, ObjectTree::device);
    EXPECT_EQ(calls(), (Lines{"Connect", "SetDiscoveryFilter", "StartDiscovery"}));
    // Found again, under a path that an address has which was resolved since.
    const char* elsewhere = "/org/bluez/hci0/dev_5A_00_00_00_00_01";
    addColour();
    fake->add(elsewhere, ObjectTree::device, FakeBluez::penProperties(heard));
    EXPECT_EQ(calls(), (Lines{"StopDiscovery", "Connect"}));
    EXPECT_EQ(fake->lastPath, elsewhere);
    EXPECT_EQ(record.lines, Lines());
}

TEST_F(BluezRadioTest, AttemptEndsWithALinkOrWithNone) {
    const auto failAlways = [this] {
        fake->replyError("Connect", "org.bluez.Error.Failed", "le-connection-abort-by-local");
    };
    const auto loseEarly = [this] {
        fake->changePen({{"Connected", true}});
        fake->reply("Connect");
        fake->changePen({{"Connected", false}});
    };
    const auto loseWithoutASignal = [this] {
        resolveServices();
        fake->reply("Connect");
        fake->addSilently(FakeBluez::pen, ObjectTree::device,
                          FakeBluez::penProperties({{"ServicesResolved", true}}));
    };
    const auto linkAtTheThirdTry = [&] {
        if (fake->count("Connect") < 3) return loseEarly();
        addColour();
        resolveServices();
    };
    const auto linkWithoutASignal = [this] {
        fake->addSilently(
            FakeBluez::pen, ObjectTree::device,
            FakeBluez::penProperties({{"Connected", true}, {"ServicesResolved", true}}));
        fake->reply("Connect");
    };
    const auto resolveTooEarly = [this] {
        resolveServices();
        settle(1);
        EXPECT_EQ(record.lines, Lines());
        addColour();  // with no signal at all
    };
    struct Case {
        std::function<void()> connect;
        std::size_t tries;
        const char* told;
    };
    const Case cases[] = {
        {[] {}, 1, "connection failed"},  // never answered
        {failAlways, 10, "connection failed"},
        {loseEarly, 10, "connection failed"},
        {[this] { fake->reply("Connect"); }, 10, "connection failed"},  // and no link
        {[this] { resolveServices(); }, 1, "connection failed"},        // and no services
        {resolveTooEarly, 1, "connected"},
        {linkAtTheThirdTry, 3, "connected"},
        {loseWithoutASignal, 10, "connection failed"},
        {linkWithoutASignal, 1, "connected"},
    };
    addPen();
    for (const Case& each : cases) {
        SCOPED_TRACE(&each - cases);
        fake->on("Connect", [&](const std::string&) { each.connect(); });
        radio->connect(pen);
        EXPECT_EQ(reports(each.tries > 1 ? 79 : 81), Lines{each.told});
        EXPECT_EQ(fake->count("Connect"), each.tries);
        if (each.told == "connected"s) radio->disconnect(pen);
        EXPECT_EQ(calls().back(), "Disconnect");
        fake->endLink();
        fake->reply("Connect");  // where it is still to be answered
        reports();
    }
}

TEST_F(BluezRadioTest, LossIsFollowedByAScanAtOnce) {
    linkPen();
    fake->hold("StartDiscovery");
    fake->endLink();
    EXPECT_EQ(calls(), (Lines{"SetDiscoveryFilter", "StartDiscovery"}));
    fake->changePen(heard);
    fake->reply("StartDiscovery");
    EXPECT_EQ(reports(), Lines{"disconnected with error"});
    radio->startScan();
    EXPECT_EQ(reports(), Lines{"sighted without a name"});
    radio->stopScan();
    EXPECT_EQ(calls(), Lines{"StopDiscovery"});
}

TEST_F(BluezRadioTest, PendingAttemptIsCancelledAndTakenUpAgain) {
    fake->hold("Connect");
    fake->hold("Disconnect");
    addPen();
    radio->connect(pen);
    settle();
    radio->disconnect(pen);
    radio->connect(pen);
    EXPECT_EQ(calls(), (Lines{"Connect", "Disconnect"}));
    fake->replyError("Connect", "org.bluez.Error.Failed", "br-connection-canceled");
    fake->reply("Disconnect");
    EXPECT_EQ(calls(), Lines{"Connect"});
    resolveServices();  // and no services
    EXPECT_EQ(reports(5), Lines{"connection failed"});
    fake->endLink();
    EXPECT_EQ(calls(), Lines{"Disconnect"});  // and not taken up once more
}

TEST_F(BluezRadioTest, RadioEndsWithALink) {
    linkPen();
    fake->hold("StartNotify");
    radio->subscribe(pen, colourHandle, true);
    radio.reset();
    EXPECT_EQ(calls(), (Lines{"StartNotify", "StopNotify", "Disconnect"}));
}

// --- values -------------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ReadIsSeenTwiceWithNotificationsAroundIt) {
    linkPen(true);
    fake->on("ReadValue", [this](const std::string&) {
        for (const std::uint8_t value : std::array<std::uint8_t, 4>{1, 7, 7, 2}) notify(value);
        fake->replyBytes("ReadValue", Data{7});
        notify(7);
    });
    radio->read(pen, colourHandle);
    EXPECT_EQ(reports(), (Lines{"1F14 notified <01>", "1F14 notified <07>", "1F14 read <07>",
                                "1F14 notified <02>", "1F14 notified <07>"}));
    fake->on("ReadValue", [this](const std::string&) {
        notify(1);
        fake->replyError("ReadValue", "org.bluez.Error.Failed", "ATT error: 0x0e");
    });
    radio->read(pen, colourHandle);
    EXPECT_EQ(reports(), (Lines{"1F14 notified <01>", "1F14 read nothing with error"}));
}

TEST_F(BluezRadioTest, ValuesComeBeforeTheSubscriptionIsConfirmed) {
    linkPen();
    fake->hold("StartNotify");
    notify(1);  // not subscribed
    settle();
    radio->subscribe(pen, colourHandle, true);
    settle();
    notify(2);
    notify(2);
    fake->reply("StartNotify");
    EXPECT_EQ(reports(), (Lines{"1F14 notified <02>", "1F14 notified <02>", "1F14 subscribed"}));
}

TEST_F(BluezRadioTest, ValueIsReadBySomebodyElse) {
    linkPen(true);
    notify(1);
    settle();
    notify(1);
    fake->answerSomebodyElse();
    EXPECT_EQ(reports(), Lines{"1F14 notified <01>"});
    notify(1);  // with nothing after it but what the radio has asked for
    EXPECT_EQ(reports(), Lines{"1F14 notified <01>"});
}

TEST_F(BluezRadioTest, TableOfServicesChanges) {
    linkPen(true);
    fake->remove(colour, ObjectTree::characteristic);
    fake->remove(service, ObjectTree::service);
    EXPECT_EQ(reports(), Lines{"1 services invalidated"});

    const std::string newService = FakeBluez::pen + "/service0025"s;
    const std::string newColour = newService + "/char0026";
    fake->add(newService, ObjectTree::service, serviceProperties());
    fake->add(newColour, ObjectTree::characteristic, colourProperties());
    EXPECT_EQ(calls(), Lines{"StartNotify"});
    EXPECT_EQ(fake->lastPath, newColour);
    fake->changeValue(newColour, Data{1});
    EXPECT_EQ(reports(), (Lines{"0 services invalidated", "1F14 notified <01>"}));

    record.characteristics.clear();
    radio->discoverServices(pen);
    ASSERT_EQ(record.services.size(), 1u);
    radio->discoverCharacteristics(pen, record.services.front().handle);
    EXPECT_EQ(record.handleOf(CBUUID("1F14")), colourHandle);
    // Told already, and told once more: no change.
    reports();
    fake->add(newColour, ObjectTree::characteristic, colourProperties());
    EXPECT_EQ(reports(), Lines());
    // Nobody wants it any more.
    radio->subscribe(pen, colourHandle, false);
    fake->remove(newColour, ObjectTree::characteristic);
    fake->add(colour, ObjectTree::characteristic, colourProperties());
    EXPECT_EQ(calls(), Lines{"StopNotify"});
}

}  // namespace
}  // namespace InkoraKit
