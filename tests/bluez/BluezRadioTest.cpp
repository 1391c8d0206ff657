#include "BluezRadioTest.h"

#include <cstdlib>
#include <functional>

namespace InkoraKit {

void BluezRadioTest::SetUp() {
    if (!PrivateBus::isAvailable()) GTEST_SKIP() << "dbus-daemon is not installed";
    bus = std::make_unique<PrivateBus>();
    ASSERT_FALSE(bus->address().empty()) << "dbus-daemon did not start";
    fake = std::make_unique<FakeBluez>(bus->address());
    fake->addAdapter(FakeBluez::hci0, "00:AA:01:00:00:42", true);
}

void BluezRadioTest::startRadio() {
    radio = std::make_unique<BluezRadio>();
    radio->start(record);
    ASSERT_TRUE(reported("adapter state 5"));
    record.take();
}

void BluezRadioTest::addPen(const Properties& more) {
    fake->addPen(more);
}

Properties BluezRadioTest::serviceProperties() {
    return {{"UUID", std::string("00001f1f-0000-1000-8000-00805f9b34fb")}, {"Primary", true}};
}

Properties BluezRadioTest::colourProperties() {
    return {{"UUID", std::string("00001f14-0000-1000-8000-00805f9b34fb")},
            {"Flags", std::vector<std::string>{"read", "notify"}}};
}

void BluezRadioTest::addColour() {
    fake->addSilently(service, ObjectTree::service, serviceProperties());
    fake->addSilently(colour, ObjectTree::characteristic, colourProperties());
}

void BluezRadioTest::resolveServices() {
    fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
    fake->change(FakeBluez::pen, ObjectTree::device, {{"ServicesResolved", true}});
}

void BluezRadioTest::linkPen() {
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
    record.take();
    fake->calls.clear();
}

namespace {

const CBUUID colourUUID("1F14");

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
             bus = std::make_unique<PrivateBus>(PrivateBus::Policy::bluezDenied);
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
        each.arrange();
        radio = std::make_unique<BluezRadio>();
        radio->start(record);
        EXPECT_TRUE(until([&] { return !record.lines.empty(); }));
        const auto state = std::to_string(static_cast<int>(each.state));
        EXPECT_EQ(record.take(), Lines{"adapter state " + state});
        EXPECT_EQ(radio->stateReason(), each.reason);
    }
    fake->addAdapter(FakeBluez::hci0, "00:AA:01:00:00:42", true);
    EXPECT_TRUE(reported("adapter state 5"));
    EXPECT_EQ(radio->stateReason(), Reason::none);
}

TEST_F(BluezRadioTest, BusVanishes) {
    startRadio();
    bus.reset();
    EXPECT_TRUE(reported("adapter state 1"));
}

// --- scanning -----------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ScanIsStoppedBeforeItHasStarted) {
    fake->hold("SetDiscoveryFilter");
    fake->hold("StartDiscovery");
    startRadio();
    radio->startScan();
    ASSERT_TRUE(called("SetDiscoveryFilter"));
    EXPECT_EQ(fake->lastOptions, (std::map<std::string, std::string>{{"Transport", "le"}}));
    settle();
    EXPECT_EQ(fake->count("StartDiscovery"), 0u);
    fake->reply("SetDiscoveryFilter");
    ASSERT_TRUE(called("StartDiscovery"));
    radio->stopScan();
    radio->startScan();
    radio->stopScan();
    fake->reply("StartDiscovery");
    ASSERT_TRUE(called("StopDiscovery"));
    EXPECT_EQ(fake->calls, (Lines{"SetDiscoveryFilter", "StartDiscovery", "StopDiscovery"}));
}

TEST_F(BluezRadioTest, DiscoveryIsRefused) {
    fake->hold("StartDiscovery");
    startRadio();
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    fake->replyError("StartDiscovery", "org.bluez.Error.InProgress",  // an old scan's
                     "Operation already in progress");
    ASSERT_TRUE(called("StartDiscovery", 2));
    fake->replyError("StartDiscovery", "org.freedesktop.DBus.Error.AccessDenied", "Rejected");
    EXPECT_TRUE(reported("adapter state 3"));
    EXPECT_EQ(radio->stateReason(), CBManagerStateReason::notPermitted);
}

TEST_F(BluezRadioTest, KnownDeviceIsReportedWhenItIsHeard) {
    addPen({{"Name", std::string("InkoraPen")}});
    startRadio();
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));  // whose answer makes the radio look at all devices
    settle();
    EXPECT_EQ(record.take(), Lines());
    fake->change(FakeBluez::pen, ObjectTree::device, {{"RSSI", std::int16_t{-60}}});
    ASSERT_TRUE(reported("sighted InkoraPen"));
    EXPECT_EQ(record.sightings.back().rssi, -60);
    EXPECT_EQ(record.sightings.back().identifier, pen);

    record.take();
    fake->change(FakeBluez::pen, ObjectTree::device, {}, {"RSSI"});
    settle();
    EXPECT_EQ(record.take(), Lines());
}

TEST_F(BluezRadioTest, NameComesLaterThanTheDevice) {
    startRadio();
    radio->startScan();
    addPen({{"RSSI", std::int16_t{-60}},
            {"ManufacturerData", std::map<std::uint16_t, Data>{{0x1234, Data{0x56}}}}});
    ASSERT_TRUE(reported("sighted without a name"));  // and not with its Alias, the address
    EXPECT_EQ(record.sightings.back().advertisement.manufacturerData, (Data{0x34, 0x12, 0x56}));
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"RSSI", std::int16_t{-61}}, {"Name", std::string("InkoraPen")}});
    EXPECT_TRUE(reported("sighted InkoraPen"));
}

TEST_F(BluezRadioTest, OwnNameDiffersFromTheAdvertisedOne) {
    startRadio();
    linkPen();
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"Name", std::string("Advertised")}, {"RSSI", std::int16_t{-60}}});
    fake->change(FakeBluez::pen, ObjectTree::device, {}, {"RSSI"});
    fake->change(FakeBluez::pen, ObjectTree::device, {{"Name", std::string("Own")}});
    ASSERT_TRUE(reported("name Own"));
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"Connected", false}, {"ServicesResolved", false}});
    ASSERT_TRUE(reported("disconnected with error"));

    // A shortened name in the next advertisement leaves the property as the link has made it.
    radio->startScan();
    fake->change(FakeBluez::pen, ObjectTree::device, {{"RSSI", std::int16_t{-60}}});
    ASSERT_TRUE(reported("sighted Advertised"));
    EXPECT_EQ(record.sightings.back().name, "Own");
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"RSSI", std::int16_t{-60}}, {"Name", std::string("Renamed")}});
    ASSERT_TRUE(reported("sighted Renamed"));

    // Linked by somebody else, and back as an object, it has not advertised since.
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"Connected", true}, {"Name", std::string("Own")}}, {"RSSI"});
    fake->remove(FakeBluez::pen, ObjectTree::device);
    settle();
    record.take();
    radio->stopScan();
    radio->startScan();
    addPen({{"Connected", true}, {"Name", std::string("Own")}});
    EXPECT_TRUE(reported("sighted Renamed"));
}

TEST_F(BluezRadioTest, LinkedPenIsFoundOnceAndTakenOver) {
    addPen({{"Name", std::string("InkoraPen")}, {"Connected", true}, {"ServicesResolved", true}});
    addColour();
    startRadio();
    radio->startScan();
    ASSERT_TRUE(reported("sighted InkoraPen"));
    EXPECT_EQ(record.sightings.back().rssi, 127);
    fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
    settle();
    EXPECT_EQ(record.take(), Lines{"sighted InkoraPen"});
    radio->stopScan();
    radio->startScan();
    ASSERT_TRUE(reported("sighted InkoraPen"));

    radio->connect(pen);
    ASSERT_TRUE(reported("connected"));
    record.take();
    radio->stopScan();
    radio->startScan();
    fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
    settle();
    EXPECT_EQ(record.take(), Lines());  // it is ours now
    radio.reset();
    EXPECT_TRUE(called("Disconnect"));
}

TEST_F(BluezRadioTest, PropertiesHaveTypesNobodyExpects) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    ASSERT_TRUE(reported("1F14 subscribed"));
    radio->startScan();
    settle();
    record.take();
    fake->change(colour, ObjectTree::characteristic, {{"Value", std::string("text")}});
    fake->change(FakeBluez::pen, ObjectTree::device, {{"RSSI", std::monostate()}});
    fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", std::string("no")}});
    settle();
    EXPECT_EQ(record.lines, Lines());
}

// --- connecting ---------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ScanGivesWayToAConnection) {
    fake->hold("StopDiscovery");
    startRadio();
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    addPen({{"RSSI", std::int16_t{-60}}});
    ASSERT_TRUE(reported("sighted without a name"));
    addColour();
    radio->connect(pen);
    ASSERT_TRUE(called("StopDiscovery"));
    settle();
    EXPECT_EQ(fake->count("Connect"), 0u);
    fake->replyError("StopDiscovery", "org.bluez.Error.Failed", "No discovery started");
    ASSERT_TRUE(called("Connect"));
    EXPECT_EQ(fake->count("StartDiscovery"), 1u);
    resolveServices();
    ASSERT_TRUE(reported("connected"));
    EXPECT_TRUE(called("StartDiscovery", 2));  // still wanted
}

TEST_F(BluezRadioTest, ServicesAreResolvedBeforeTheyAreThere) {
    fake->hold("Connect");
    startRadio();
    addPen();
    radio->connect(pen);
    ASSERT_TRUE(called("Connect"));
    resolveServices();
    settle();
    EXPECT_FALSE(record.has("connected"));
    addColour();  // with no signal at all
    ASSERT_TRUE(reported("connected"));
    radio->discoverServices(pen);
    ASSERT_EQ(record.services.size(), 1u);
    EXPECT_EQ(record.services.front().uuid, CBUUID("1F1F"));
}

TEST_F(BluezRadioTest, DeviceIsRemovedWhileItIsConnectedTo) {
    fake->hold("Connect");  // never answered, as of a device that goes
    startRadio();
    addPen();
    radio->connect(pen);
    ASSERT_TRUE(called("Connect"));
    fake->remove(FakeBluez::pen, ObjectTree::device);
    ASSERT_TRUE(called("StartDiscovery"));
    // Found again, under a path that an address has which was resolved since.
    addColour();
    fake->add(elsewhere, ObjectTree::device,
              FakeBluez::penProperties({{"RSSI", std::int16_t{-60}}}));
    ASSERT_TRUE(called("Connect", 2));
    EXPECT_EQ(fake->lastPath, elsewhere);
    EXPECT_EQ(fake->count("StopDiscovery"), 1u);
    EXPECT_EQ(record.lines, Lines());
}

TEST_F(BluezRadioTest, LinkIsThereWithoutASignal) {
    fake->on("Connect", [this](const std::string&) {
        fake->addSilently(
            FakeBluez::pen, ObjectTree::device,
            FakeBluez::penProperties({{"Connected", true}, {"ServicesResolved", true}}));
        addColour();
        fake->reply("Connect");
    });
    startRadio();
    addPen();
    radio->connect(pen);
    EXPECT_TRUE(reported("connected"));
    EXPECT_EQ(fake->count("Connect"), 1u);
}

TEST_F(BluezRadioTest, AttemptThatFailsLeavesNoLink) {
    fake->on("Connect", [this](const std::string&) {
        fake->replyError("Connect", "org.bluez.Error.Failed", "le-connection-abort-by-local");
    });
    startRadio();
    addPen();
    radio->connect(pen);
    ASSERT_TRUE(reported("connection failed"));
    EXPECT_EQ(fake->count("Connect"), 10u);
    EXPECT_TRUE(called("Disconnect"));

    fake->on("Connect", [this](const std::string&) { resolveServices(); });  // and no services
    radio->connect(pen);
    ASSERT_TRUE(called("Disconnect", 2));
    settle();
    EXPECT_EQ(record.lines, (Lines{"connection failed", "connection failed"}));
}

TEST_F(BluezRadioTest, LossIsFollowedByAScanAtOnce) {
    fake->hold("StartDiscovery");
    startRadio();
    linkPen();
    fake->change(FakeBluez::pen, ObjectTree::device,
                 {{"Connected", false}, {"ServicesResolved", false}});
    ASSERT_TRUE(called("StartDiscovery"));
    fake->change(FakeBluez::pen, ObjectTree::device, {{"RSSI", std::int16_t{-60}}});
    fake->reply("StartDiscovery");
    ASSERT_TRUE(reported("disconnected with error"));
    radio->startScan();
    ASSERT_TRUE(reported("sighted without a name"));
    EXPECT_EQ(fake->calls, (Lines{"SetDiscoveryFilter", "StartDiscovery"}));
    radio->stopScan();
    ASSERT_TRUE(called("StopDiscovery"));
}

TEST_F(BluezRadioTest, LinkIsLostAsSoonAsItIsThere) {
    fake->hold("Connect");
    startRadio();
    addPen();
    addColour();
    radio->connect(pen);
    for (std::size_t tries = 1; tries <= 2; ++tries) {
        ASSERT_TRUE(called("Connect", tries));
        fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", true}});
        fake->reply("Connect");
        fake->change(FakeBluez::pen, ObjectTree::device, {{"Connected", false}});
    }
    ASSERT_TRUE(called("Connect", 3));
    resolveServices();
    ASSERT_TRUE(reported("connected"));
    EXPECT_EQ(record.lines, Lines{"connected"});
}

TEST_F(BluezRadioTest, PendingAttemptIsCancelledAndTakenUpAgain) {
    fake->hold("Connect");
    fake->hold("Disconnect");
    startRadio();
    addPen();
    addColour();
    radio->connect(pen);
    ASSERT_TRUE(called("Connect"));
    radio->disconnect(pen);
    radio->connect(pen);
    ASSERT_TRUE(called("Disconnect"));
    EXPECT_EQ(fake->count("Connect"), 1u);
    fake->replyError("Connect", "org.bluez.Error.Failed", "br-connection-canceled");
    fake->reply("Disconnect");
    ASSERT_TRUE(called("Connect", 2));
    resolveServices();
    ASSERT_TRUE(reported("connected"));
    EXPECT_EQ(record.lines, Lines{"connected"});
}

TEST_F(BluezRadioTest, RadioEndsWithALink) {
    fake->hold("StartNotify");
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio.reset();
    ASSERT_TRUE(called("Disconnect"));
    EXPECT_EQ(fake->calls, (Lines{"StartNotify", "StopNotify", "Disconnect"}));
}

// --- values -------------------------------------------------------------------------------------

TEST_F(BluezRadioTest, ReadIsSeenTwiceWithNotificationsAroundIt) {
    fake->on("ReadValue", [this](const std::string& path) {
        for (const Data& value : {Data{1}, Data{7}, Data{7}, Data{2}})
            fake->change(path, ObjectTree::characteristic, {{"Value", value}});
        fake->replyBytes("ReadValue", Data{7});
        fake->change(path, ObjectTree::characteristic, {{"Value", Data{7}}});
    });
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio->read(pen, record.handleOf(colourUUID));
    ASSERT_TRUE(reported("1F14 notified <02>"));
    settle();
    EXPECT_EQ(record.take(), (Lines{"1F14 subscribed", "1F14 notified <01>", "1F14 notified <07>",
                                    "1F14 read <07>", "1F14 notified <02>", "1F14 notified <07>"}));
}

TEST_F(BluezRadioTest, ReadFailsAmidNotifications) {
    fake->on("ReadValue", [this](const std::string& path) {
        fake->change(path, ObjectTree::characteristic, {{"Value", Data{1}}});
        fake->replyError("ReadValue", "org.bluez.Error.Failed",
                         "Operation failed with ATT error: 0x0e");
    });
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio->read(pen, record.handleOf(colourUUID));
    ASSERT_TRUE(reported("1F14 read nothing with error"));
    EXPECT_EQ(record.take(),
              (Lines{"1F14 subscribed", "1F14 notified <01>", "1F14 read nothing with error"}));
}

TEST_F(BluezRadioTest, ValuesComeBeforeTheSubscriptionIsConfirmed) {
    fake->hold("StartNotify");
    startRadio();
    linkPen();
    fake->change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});  // not subscribed
    settle();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    ASSERT_TRUE(called("StartNotify"));
    fake->change(colour, ObjectTree::characteristic, {{"Value", Data{2}}});
    fake->change(colour, ObjectTree::characteristic, {{"Value", Data{2}}});
    fake->reply("StartNotify");
    ASSERT_TRUE(reported("1F14 subscribed"));
    EXPECT_EQ(record.take(),
              (Lines{"1F14 notified <02>", "1F14 notified <02>", "1F14 subscribed"}));
}

TEST_F(BluezRadioTest, ValueIsReadBySomebodyElse) {
    startRadio();
    linkPen();
    radio->subscribe(pen, record.handleOf(colourUUID), true);
    radio->startScan();
    ASSERT_TRUE(called("StartDiscovery"));
    settle();
    record.take();
    const auto signal = [this] {
        fake->change(colour, ObjectTree::characteristic, {{"Value", Data{1}}});
    };
    signal();
    settle();
    signal();
    fake->answerSomebodyElse();
    settle();
    EXPECT_EQ(record.lines, Lines{"1F14 notified <01>"});
    signal();  // with nothing after it but what the radio has asked for
    EXPECT_TRUE(until([&] { return record.lines.size() == 2; }));
}

TEST_F(BluezRadioTest, TableOfServicesChanges) {
    startRadio();
    linkPen();
    const AttributeHandle handle = record.handleOf(colourUUID);
    radio->subscribe(pen, handle, true);
    ASSERT_TRUE(reported("1F14 subscribed"));
    fake->remove(colour, ObjectTree::characteristic);
    fake->remove(service, ObjectTree::service);
    ASSERT_TRUE(reported("1 services invalidated"));

    const std::string newService = std::string(FakeBluez::pen) + "/service0025";
    const std::string newColour = newService + "/char0026";
    fake->add(newService, ObjectTree::service, serviceProperties());
    fake->add(newColour, ObjectTree::characteristic, colourProperties());
    ASSERT_TRUE(called("StartNotify", 2));
    EXPECT_EQ(fake->lastPath, newColour);
    ASSERT_TRUE(reported("0 services invalidated"));
    record.take();
    fake->change(newColour, ObjectTree::characteristic, {{"Value", Data{1}}});
    ASSERT_TRUE(reported("1F14 notified <01>"));

    record.characteristics.clear();
    radio->discoverServices(pen);
    ASSERT_EQ(record.services.size(), 1u);
    radio->discoverCharacteristics(pen, record.services.front().handle);
    EXPECT_EQ(record.handleOf(colourUUID), handle);
    // Told already, and told once more: no change.
    record.take();
    fake->add(newColour, ObjectTree::characteristic, colourProperties());
    settle();
    settle();
    EXPECT_EQ(record.take(), Lines());
}

}  // namespace
}  // namespace InkoraKit
