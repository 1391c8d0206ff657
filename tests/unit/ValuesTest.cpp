#include <InkoraKit/InkoraConstants.h>
#include <InkoraKit/ManagerState.h>
#include <InkoraKit/Version.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UUID.h>

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <stdexcept>
#include <string>

namespace InkoraKit {
namespace {

TEST(UUIDTest, ReadsEitherCaseAndNothingMalformed) {
    const auto uuid = UUID::fromString("0c50d390-dc8e-436b-8ad0-a36d1b304b18");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->uuidString(), "0C50D390-DC8E-436B-8AD0-A36D1B304B18");
    for (const char* text :
         {"", "1F1F", "0c50d390dc8e436b8ad0a36d1b304b18", "0c50d390-dc8e-436b-8ad0-a36d1b304b1",
          "0c50d390-dc8e-436b-8ad0-a36d1b304b1g", "0c50d390_dc8e-436b-8ad0-a36d1b304b18",
          "0c50d390-dc8e-436b-8ad0-a36d1b304b18 "})
        EXPECT_FALSE(UUID::fromString(text)) << text;
}

TEST(UUIDTest, NewOnesAreRandomAndOfVersionFour) {
    const UUID first;
    const UUID second;
    EXPECT_NE(first, second);
    EXPECT_EQ(first.uuidString()[14], '4');
    EXPECT_NE(std::string("89AB").find(first.uuidString()[19]), std::string::npos);
}

TEST(CBUUIDTest, ShowsTheShortestFormOfItsValue) {
    const struct {
        const char* text;
        const char* shown;
    } cases[] = {
        {"1f1f", "1F1F"},
        {"0000180f", "180F"},
        {"12345678", "12345678"},
        {"00001f14-0000-1000-8000-00805f9b34fb", "1F14"},
        {"12345678-0000-1000-8000-00805f9b34fb", "12345678"},
        {"12345678-0000-1000-8000-00805f9b34fc", "12345678-0000-1000-8000-00805F9B34FC"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(CBUUID(text).uuidString(), shown) << text;
    EXPECT_EQ(CBUUID("1234"), CBUUID("00001234-0000-1000-8000-00805f9b34fb"));
    EXPECT_NE(CBUUID("1234"), CBUUID("12345678"));
    EXPECT_EQ(std::hash<CBUUID>{}(CBUUID("1234")), std::hash<CBUUID>{}(CBUUID("00001234")));
    EXPECT_EQ(CBUUID("180F").description(), "Battery");
    EXPECT_EQ(CBUUID("1F1F").description(), "1F1F");
}

TEST(CBUUIDTest, RefusesWhatIsNoUUID) {
    for (const char* text : {"", "1F1", "xyzw", "1F1F1", "0c50d390dc8e436b8ad0a36d1b304b18"}) {
        try {
            const CBUUID uuid(text);
            ADD_FAILURE() << text;
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(),
                      "String " + std::string(text) + " does not represent a valid UUID");
        }
    }
}

TEST(DataTest, EncodesAsLowerCaseHexadecimal) {
    EXPECT_EQ((Data{0x00, 0x0A, 0xFF}).hexEncodedString(), "000aff");
    EXPECT_EQ(Data().hexEncodedString(), "");
    EXPECT_EQ((Data{1, 2, 3, 4}).description(), "4 bytes");
}

TEST(AnyTest, KeepsNumbersAndTextsInOneFormAndGivesBackNothingElse) {
    const Any text = "abc";
    ASSERT_TRUE(text.as<std::string>());
    EXPECT_EQ(*text.as<std::string>(), "abc");
    EXPECT_FALSE(text.as<NSNumber>());
    EXPECT_FALSE(Any().as<std::string>());
    EXPECT_EQ(Any(1), Any(1.0));
    EXPECT_FALSE(Any(1) == Any("1"));
    EXPECT_EQ(Any(), Any());
    EXPECT_FALSE(Any() == Any(0));
}

TEST(NSErrorTest, DescribesItself) {
    const NSError plain("Bluetooth setting is disabled.", 17);
    EXPECT_EQ(plain.localizedDescription(),
              "The operation couldn’t be completed. (Bluetooth setting is disabled. error 17.)");
    EXPECT_EQ(plain.description(),
              "Error Domain=Bluetooth setting is disabled. Code=17 \"(null)\"");
    const NSError told("D", 5, {{NSLocalizedDescriptionKey, "x"}});
    EXPECT_STREQ(told.what(), "x");
    EXPECT_EQ(told.description(),
              "Error Domain=D Code=5 \"x\" UserInfo={NSLocalizedDescription=x}");
    EXPECT_EQ(NSError("D", 5, {{NSLocalizedFailureReasonErrorKey, "R"}}).localizedDescription(),
              "The operation couldn’t be completed. R");
    EXPECT_EQ(NSError(NSCocoaErrorDomain, 3840).localizedDescription(),
              "The data couldn’t be read because it isn’t in the correct format.");
    EXPECT_EQ(NSError(NSCocoaErrorDomain, 4).localizedDescription(),
              "The operation couldn’t be completed. (Cocoa error 4.)");
}

TEST(NSErrorTest, IsEqualByDomainCodeAndInformation) {
    const NSError error("D", 5, {{"k", 1}});
    EXPECT_EQ(error, NSError("D", 5, {{"k", 1.0}}));
    EXPECT_EQ(std::hash<NSError>{}(error), std::hash<NSError>{}(NSError("D", 5, {{"k", 1}})));
    EXPECT_FALSE(error == NSError("D", 5));
    EXPECT_FALSE(error == NSError("D", 6, {{"k", 1}}));
    EXPECT_FALSE(error == NSError("E", 5, {{"k", 1}}));
}

TEST(ManagerStateTest, HasTheTwelveStatesInOrder) {
    constexpr std::array texts = {
        "Unknown State",
        "BlueToothDisabled State",
        "BlueToothEnabled State",
        "DiscoveryStarted State",
        "DiscoveryStopped State",
        "DeviceDiscovered State",
        "DeviceFailedToDiscover State",
        "DeviceDiscoveryTimedout",
        "DeviceConnected State",
        "DeviceFailedToConnect State",
        "DeviceDisconnected State",
        "DeviceCapturedColor State",
    };
    for (int raw = 0; raw < 12; ++raw) {
        const auto state = ManagerStateFromRawValue(raw);
        ASSERT_TRUE(state);
        EXPECT_EQ(rawValue(*state), raw);
        EXPECT_EQ(description(*state), texts[static_cast<std::size_t>(raw)]);
    }
    EXPECT_FALSE(ManagerStateFromRawValue(12));
    EXPECT_FALSE(ManagerStateFromRawValue(-1));
    EXPECT_LT(ManagerState::Unknown, ManagerState::BlueToothDisabled);
    EXPECT_EQ(printed(ManagerState::BlueToothEnabled), "BlueToothEnabled");
    EXPECT_EQ(printed(ManagerState::DeviceDiscoveryTimedout), "DeviceDiscoveryTimedout");
}

TEST(ManagerStateTest, ARandomStateIsNeverTheUpperBound) {
    std::set<ManagerState> drawn;
    for (int i = 0; i < 400; ++i)
        drawn.insert(random(ManagerStateRange(ManagerState::DeviceDiscovered,
                                              ManagerState::DeviceDiscoveryTimedout)));
    EXPECT_EQ(drawn,
              (std::set{ManagerState::DeviceDiscovered, ManagerState::DeviceFailedToDiscover}));
    EXPECT_EQ(random(ManagerState::BlueToothEnabled, ManagerState::BlueToothEnabled),
              ManagerState::BlueToothEnabled);
}

TEST(ManagerStateDeathTest, ALowerBoundAboveTheUpperIsFatal) {
    EXPECT_DEATH(random(ManagerState::DeviceConnected, ManagerState::Unknown),
                 "Fatal error: Negative value is not representable");
    EXPECT_DEATH(ManagerStateRange(ManagerState::DeviceConnected, ManagerState::Unknown),
                 "Fatal error: Can't form Range with upperBound < lowerBound");
}

TEST(VersionTest, IsAWhatMarkerNamingTheKit) {
    EXPECT_EQ(std::string(InkoraKitVersionString).substr(0, 4), "@(#)");
    EXPECT_NE(std::string(InkoraKitVersionString).find("InkoraKit-1"), std::string::npos);
    EXPECT_EQ(InkoraKitVersionNumber, 1.0);
}

}  // namespace
}  // namespace InkoraKit
