#include "platform/radios/bluez/BluezErrors.h"
#include "platform/radios/bluez/DeviceAddress.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace InkoraKit {
namespace {

using Paths = std::vector<std::string>;

TEST(ObjectTree, ObjectsOfAnotherAdapterBeginAlike) {
    ObjectTree tree;
    const Properties none;
    for (const char* path : {"/org/bluez/hci1/dev_B", "/org/bluez/hci1/dev_A",
                             "/org/bluez/hci10/dev_A", "/org/bluez/hci1"})
        tree.add(path, ObjectTree::device, none);
    tree.add("/org/bluez/hci1/dev_A/service0001", ObjectTree::service, none);
    EXPECT_EQ(tree.below("/org/bluez/hci1", ObjectTree::device),
              (Paths{"/org/bluez/hci1/dev_A", "/org/bluez/hci1/dev_B"}));
}

TEST(ObjectTree, ChangesTellWhatWasBefore) {
    ObjectTree tree;
    tree.add("/d", ObjectTree::device, {{"RSSI", std::int16_t{-60}}, {"Connected", true}});
    const Properties before =
        tree.change("/d", ObjectTree::device, {{"Connected", false}, {"Name", std::string("pen")}},
                    {"RSSI", "TxPower"});
    EXPECT_EQ(
        before,
        (Properties{
            {"Connected", true}, {"Name", {}}, {"RSSI", std::int16_t{-60}}, {"TxPower", {}}}));
    EXPECT_EQ(*tree.properties("/d", ObjectTree::device),
              (Properties{{"Connected", false}, {"Name", std::string("pen")}}));
    EXPECT_TRUE(tree.change("/unknown", ObjectTree::device, {{"Connected", true}}, {}).empty());
}

TEST(ObjectTree, DeviceIsTakenFromAPath) {
    EXPECT_EQ(deviceOf("/org/bluez/hci0/dev_A/service0001/char0002"), "/org/bluez/hci0/dev_A");
    EXPECT_EQ(deviceOf("/org/bluez/hci0/dev_A"), "/org/bluez/hci0/dev_A");
    EXPECT_EQ(deviceOf("/org/bluez/hci0"), "");
}

TEST(DeviceAddress, IdentifierLeadsBackToTheDevice) {
    const auto address = DeviceAddress::fromText("C6:11:22:33:44:5f", "random");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->identifier().uuidString(), "496E6B6F-7261-8002-8000-C6112233445F");
    EXPECT_EQ(DeviceAddress::fromIdentifier(address->identifier()), address);
    EXPECT_NE(DeviceAddress::fromText("C6:11:22:33:44:5F", "public")->identifier(),
              address->identifier());
}

TEST(DeviceAddress, TextIsNoAddress) {
    for (const char* text : {"", "C6:11:22:33:44", "C6:11:22:33:44:5G", "C6-11-22-33-44-5F",
                             "C6:11:22:33:44:5F:", "C6:11:22:33: 4:5F"})
        EXPECT_FALSE(DeviceAddress::fromText(text, "public")) << text;
    EXPECT_FALSE(DeviceAddress::fromText("C6:11:22:33:44:5F", "other"));
    EXPECT_FALSE(DeviceAddress::fromIdentifier(UUID()));
}

TEST(BluezErrors, AttributeErrorsKeepTheirCodes) {
    struct Case {
        BusError error;
        const char* domain;
        int code;
    };
    const Case cases[] = {
        {{"org.bluez.Error.NotPermitted", "Read not permitted"}, "CBATTErrorDomain", 0x02},
        {{"org.bluez.Error.NotPermitted", "Not paired"}, "CBATTErrorDomain", 0x05},
        {{"org.bluez.Error.NotPermitted", "Notify acquired"}, "CBErrorDomain", 0},
        {{"org.bluez.Error.Failed", "Operation failed with ATT error: 0x0e"},
         "CBATTErrorDomain",
         0x0e},
        {{"org.bluez.Error.Failed", "Operation failed with ATT error: 0x"}, "CBErrorDomain", 0},
        {{"org.bluez.Error.Failed", "Not connected"}, "CBErrorDomain", 0},
    };
    for (const Case& each : cases) {
        const NSError error = bluezErrors::attributeError(each.error);
        EXPECT_EQ(error.domain(), each.domain) << each.error.text;
        EXPECT_EQ(error.code(), each.code) << each.error.text;
        EXPECT_EQ(error.localizedDescription(), each.error.text);
    }
}

}  // namespace
}  // namespace InkoraKit
