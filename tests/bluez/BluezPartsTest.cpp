#include "platform/radios/bluez/BluezErrors.h"
#include "platform/radios/bluez/DeviceAddress.h"
#include "platform/radios/bluez/ObjectTree.h"
#include "platform/radios/bluez/RadioSwitch.h"
#include "platform/radios/bluez/ValueSieve.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
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

TEST(RadioSwitch, HardBlockIsToldBeforeASoftOne) {
    const auto folder = std::filesystem::temp_directory_path() / "bluez-radio-switch";
    std::filesystem::create_directories(folder / "hci1" / "rfkill3");
    const auto block = [&](int soft, int hard) {
        std::ofstream(folder / "hci1" / "rfkill3" / "soft") << soft << '\n';
        std::ofstream(folder / "hci1" / "rfkill3" / "hard") << hard << '\n';
        return radioBlockOf("/org/bluez/hci1", folder);
    };
    EXPECT_EQ(block(0, 0), RadioBlock::none);
    EXPECT_EQ(block(1, 0), RadioBlock::soft);
    EXPECT_EQ(block(1, 1), RadioBlock::hard);
    EXPECT_EQ(radioBlockOf("/org/bluez/hci2", folder), RadioBlock::none);
    std::filesystem::remove_all(folder);
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

TEST(BluezErrors, FailuresOfConnectAreOfFourClasses) {
    const auto classOf = [](const char* name, const char* text) {
        return bluezErrors::connectFailureOf({name, text});
    };
    const char* failed = "org.bluez.Error.Failed";
    EXPECT_EQ(classOf("org.bluez.Error.AlreadyConnected", "?"), ConnectFailure::none);
    EXPECT_EQ(classOf(failed, "Operation already in progress"), ConnectFailure::busy);
    EXPECT_EQ(classOf("org.bluez.Error.NotReady", "?"), ConnectFailure::busy);
    EXPECT_EQ(classOf(failed, "br-connection-canceled"), ConnectFailure::transient);
    EXPECT_EQ(classOf(failed, "le-connection-abort-by-local\n"), ConnectFailure::transient);
    EXPECT_EQ(classOf(failed, "le-connection-refused"), ConnectFailure::permanent);
    EXPECT_EQ(classOf("org.freedesktop.DBus.Error.AccessDenied", "?"), ConnectFailure::permanent);
}

// Each message of bluetoothd by its number, with the value that it signals, a dot when it answers
// the question what comes next, or a dash for anything else.
TEST(ValueSieve, NotificationsAreToldOnce) {
    struct Case {
        const char* what;
        const char* messages;
        const char* told;
    };
    const Case cases[] = {
        {"sent twice", "1- 2a 3a 4. 5a 6.", "aaa"},
        {"sent twice, with signals of other things between", "1a 2- 3a 4- 5a 6-", "aaa"},
        {"read by another client", "1a 2. 3a 5. 6- 7a 8- 9b 11. 12b 13.", "aabb"},
        {"another client subscribes", "1a 4b 5b 6. 7c 8c 9c 10c 11d 12d 13e 14e 15.", "abccde"},
        {"two others subscribe, and one of them reads", "1a 6b 7b 8b 9. 10b 12. 13c 14c 15c 16.",
         "abc"},
        {"the other client leaves", "1a 4b 5b 6. 8c 9. 10c 11. 12d 13d 14.", "abccdd"},
        {"another client answered, nobody subscribed", "1a 3b 4. 5b 6b 7.", "abbb"},
    };
    for (const Case& each : cases) {
        ValueSieve sieve;
        sieve.begin(true);
        std::string told;
        const auto tell = [&](const std::optional<Data>& value) {
            if (value) told += static_cast<char>((*value)[0]);
        };
        std::istringstream messages(each.messages);
        ValueSieve::Serial serial = 0;
        for (char kind = 0; messages >> serial >> kind;) {
            tell(sieve.heard(serial));
            if (kind == '.') tell(sieve.decide());
            if (kind == '.' || kind == '-') continue;
            tell(sieve.signalled(Data{static_cast<std::uint8_t>(kind)}));
        }
        EXPECT_EQ(told, each.told) << each.what;
    }
}

}  // namespace
}  // namespace InkoraKit
