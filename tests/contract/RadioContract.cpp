#include "RadioContract.h"

#include <InkoraKit/platform/RunLoop.h>

namespace InkoraKit {

void RadioContract::SetUp() {
    colour = std::make_shared<VirtualCharacteristic>(CBUUID("1F14"), Data{0x01, 0xff, 0x80, 0x00});
    battery = std::make_shared<VirtualCharacteristic>(CBUUID("1F17"), Data{0x64});
    world = GetParam()();
    world->setServices({{CBUUID("1F1F"), {colour, battery}}});
    radio = world->openRadio();
    radio->start(record);
    waitFor("adapter state 5");
    record.take();
}

void RadioContract::waitFor(const std::string& line) {
    const double end = RunLoop::main().now() + 10;
    while (!record.has(line) && RunLoop::main().now() < end) RunLoop::main().runOnce(0.05);
    ASSERT_TRUE(record.has(line)) << line << " never came";
}

void RadioContract::waitForQuiet() {
    RunLoop::main().runFor(10);
}

UUID RadioContract::findPen() {
    radio->startScan();
    waitFor("sighted InkoraPen");
    radio->stopScan();
    waitForQuiet();
    record.take();
    return record.sightings.back().identifier;
}

UUID RadioContract::linkPen() {
    const UUID pen = findPen();
    radio->connect(pen);
    waitFor("connected");
    radio->discoverServices(pen);
    waitFor("services");
    for (const RemoteService& service : record.services) {
        radio->discoverCharacteristics(pen, service.handle);
        waitFor("characteristics 1F14 1F17");
    }
    record.take();
    return pen;
}

void RadioContract::subscribeTo(const UUID& pen, const VirtualCharacteristic& characteristic) {
    radio->subscribe(pen, handleOf(characteristic), true);
    waitFor(characteristic.uuid().uuidString() + " subscribed");
    record.take();
}

TEST_P(RadioContract, AdapterIsSwitchedOffAndOn) {
    world->setPowered(false);
    waitFor("adapter state 4");
    world->setPowered(true);
    waitForQuiet();
    EXPECT_EQ(record.take(), (Lines{"adapter state 4", "adapter state 5"}));
}

TEST_P(RadioContract, AdvertiserIsSightedOnlyWhileScanning) {
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines());

    const UUID pen = findPen();
    const Advertisement& sent = record.sightings.back().advertisement;
    EXPECT_EQ(sent.localName, "InkoraPen");
    EXPECT_EQ(sent.serviceUUIDs, std::vector{CBUUID("1F1F")});
    EXPECT_EQ(record.sightings.back().rssi, -60);

    waitForQuiet();
    EXPECT_EQ(record.take(), Lines());
    EXPECT_EQ(findPen(), pen);  // heard again by a new scan, as the same device
}

TEST_P(RadioContract, NameArrivesAfterTheFirstAdvertisement) {
    world->delayName();
    radio->startScan();
    waitFor("sighted InkoraPen");
    EXPECT_EQ(record.lines.front(), "sighted without a name");
    EXPECT_EQ(record.sightings.front().identifier, record.sightings.back().identifier);
    EXPECT_EQ(record.sightings.back().advertisement.serviceUUIDs, std::vector{CBUUID("1F1F")});
}

TEST_P(RadioContract, ConnectionIsRefused) {
    const UUID pen = findPen();
    world->setConnectAnswer(VirtualConnectAnswer::refuse);
    radio->connect(pen);
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"connection failed"});

    world->setConnectAnswer(VirtualConnectAnswer::accept);
    radio->connect(pen);
    waitFor("connected");
}

TEST_P(RadioContract, PendingAttemptIsCancelledSilently) {
    const UUID pen = findPen();
    world->setConnectAnswer(VirtualConnectAnswer::none);
    radio->connect(pen);
    waitForQuiet();
    radio->disconnect(pen);
    world->setConnectAnswer(VirtualConnectAnswer::accept);
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines());

    radio->connect(pen);
    radio->disconnect(pen);
    radio->connect(pen);
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"connected"});
}

TEST_P(RadioContract, LinkIsClosedByTheCentral) {
    const UUID pen = linkPen();
    subscribeTo(pen, *colour);
    radio->read(pen, handleOf(*battery));
    radio->disconnect(pen);
    world->notify(*colour, Data{0x01, 0x02, 0x03, 0x04});
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"disconnected"});
}

TEST_P(RadioContract, LinkIsClosedByThePen) {
    const UUID pen = linkPen();
    subscribeTo(pen, *colour);
    world->dropLink();
    world->notify(*colour, Data{0x01, 0x02, 0x03, 0x04});
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"disconnected with error"});
}

TEST_P(RadioContract, LinkIsClosedByBothAtOnce) {
    radio->disconnect(linkPen());
    world->dropLink();
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"disconnected"});
}

TEST_P(RadioContract, TwoServicesAreAlike) {
    const auto twin = std::make_shared<VirtualCharacteristic>(colour->uuid(), Data{0x02});
    world->setServices({{CBUUID("1F1F"), {colour}}, {CBUUID("1F1F"), {twin, battery}}});
    const UUID pen = findPen();
    radio->connect(pen);
    waitFor("connected");
    radio->discoverServices(pen);
    waitFor("services");
    ASSERT_EQ(record.services.size(), 2u);
    EXPECT_EQ(record.services[0].uuid, record.services[1].uuid);
    EXPECT_NE(record.services[0].handle, record.services[1].handle);
    record.take();

    radio->discoverCharacteristics(pen, record.services[0].handle);
    radio->discoverCharacteristics(pen, record.services[1].handle);
    waitForQuiet();
    EXPECT_EQ(record.take(), (Lines{"characteristics 1F14", "characteristics 1F14 1F17"}));
    EXPECT_EQ(record.characteristics.size(), 3u);
    for (const auto& [handle, found] : record.characteristics) EXPECT_EQ(found.properties, 0x12u);
}

TEST_P(RadioContract, EachReadHasOneAnswer) {
    const UUID pen = linkPen();
    subscribeTo(pen, *colour);  // a subscriber must not take the answer for a notification as well
    world->failNextRead(*battery);
    radio->read(pen, handleOf(*colour));
    radio->read(pen, handleOf(*battery));
    radio->read(pen, handleOf(*colour));
    radio->read(pen, handleOf(*battery));
    waitForQuiet();
    EXPECT_EQ(record.take(), (Lines{"1F14 read <01ff8000>", "1F17 read nothing with error",
                                    "1F14 read <01ff8000>", "1F17 read <64>"}));
}

TEST_P(RadioContract, EveryNotificationComesInOrder) {
    const UUID pen = linkPen();
    world->notify(*colour, Data{0x00});  // nobody has subscribed yet
    waitForQuiet();
    subscribeTo(pen, *colour);
    for (const Data& value : {Data{0x01, 0x02}, Data{0x01, 0x02}, Data{}, Data{0x01, 0x02}})
        world->notify(*colour, value);
    world->notify(*battery, Data{0x32});
    waitForQuiet();
    EXPECT_EQ(record.take(), (Lines{"1F14 notified <0102>", "1F14 notified <0102>",
                                    "1F14 notified <>", "1F14 notified <0102>"}));

    radio->subscribe(pen, handleOf(*colour), false);
    waitFor("1F14 not subscribed");
    world->notify(*colour, Data{0x03});
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"1F14 not subscribed"});
}

TEST_P(RadioContract, PenIsLinkedASecondTime) {
    subscribeTo(linkPen(), *colour);
    world->dropLink();
    waitFor("disconnected with error");
    record.characteristics.clear();

    const UUID pen = linkPen();
    world->notify(*colour, Data{0x01});  // the first link's subscription has ended with it
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines());
    subscribeTo(pen, *colour);
    world->notify(*colour, Data{0x02});
    waitForQuiet();
    EXPECT_EQ(record.take(), Lines{"1F14 notified <02>"});
}

TEST_P(RadioContract, AdapterIsSwitchedOffDuringALink) {
    const UUID pen = linkPen();
    subscribeTo(pen, *colour);
    radio->startScan();
    radio->read(pen, handleOf(*colour));
    world->setPowered(false);
    world->notify(*colour, Data{0x01});
    waitForQuiet();
    world->setPowered(true);
    waitForQuiet();
    EXPECT_EQ(record.take(), (Lines{"adapter state 4", "adapter state 5"}));

    linkPen();
}

TEST_P(RadioContract, AdapterIsSwitchedOffDuringAnAttempt) {
    const UUID pen = findPen();
    for (const auto answer : {VirtualConnectAnswer::none, VirtualConnectAnswer::accept}) {
        world->setConnectAnswer(answer);
        radio->connect(pen);
        world->setPowered(false);
        waitFor("adapter state 4");
        world->setConnectAnswer(VirtualConnectAnswer::accept);
        world->setPowered(true);
        waitForQuiet();
        EXPECT_EQ(record.take(), (Lines{"adapter state 4", "adapter state 5"}));
    }
}

TEST_P(RadioContract, SignalOfALinkIsRead) {
    const UUID pen = linkPen();
    radio->readRSSI(pen);
    waitForQuiet();
    EXPECT_EQ(record.take(), radio->capabilities().canReadRSSI ? Lines{"rssi -60"}
                                                               : Lines{"rssi nothing with error"});
}

}  // namespace InkoraKit
