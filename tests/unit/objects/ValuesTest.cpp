#include <InkoraKit/ManagerState.h>
#include <InkoraKit/Version.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UUID.h>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <utility>

namespace InkoraKit {
namespace {

using enum ManagerState;

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
    const std::pair<const char*, const char*> cases[] = {
        {"1f1f", "1F1F"},
        {"0000180f", "180F"},
        {"12345678", "12345678"},
        {"00345678", "00345678"},
        {"12005678", "12005678"},
        {"00001f14-0000-1000-8000-00805f9b34fb", "1F14"},
        {"12345678-0000-1000-8000-00805f9b34fb", "12345678"},
        {"12345678-0000-1000-8000-00805f9b34fc", "12345678-0000-1000-8000-00805F9B34FC"}};
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
    EXPECT_FALSE(text.as<NSNumber>() || Any().as<std::string>());
    EXPECT_TRUE(Any(1) == Any(1.0) && Any() == Any());
    EXPECT_FALSE(Any(1) == Any("1") || Any() == Any(0));
}

TEST(NSErrorTest, DescribesItself) {
    const std::pair<NSError, std::string> cases[] = {
        {NSError("Bluetooth setting is disabled.", 17),
         "The operation couldn’t be completed. (Bluetooth setting is disabled. error 17.)"},
        {NSError("D", 5, {{NSLocalizedDescriptionKey, "x"}}), "x"},
        {NSError("D", 5, {{NSLocalizedFailureReasonErrorKey, "R"}}),
         "The operation couldn’t be completed. R"},
        {NSError(NSCocoaErrorDomain, 3840),
         "The data couldn’t be read because it isn’t in the correct format."},
        {NSError(NSCocoaErrorDomain, 4), "The operation couldn’t be completed. (Cocoa error 4.)"}};
    for (const auto& [error, text] : cases) {
        EXPECT_EQ(error.localizedDescription(), text);
        EXPECT_EQ(error.what(), text);
    }
    EXPECT_EQ(cases[0].first.description(),
              "Error Domain=Bluetooth setting is disabled. Code=17 \"(null)\"");
    EXPECT_EQ(cases[1].first.description(),
              "Error Domain=D Code=5 \"x\" UserInfo={NSLocalizedDescription=x}");
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
    for (int raw = 0; raw < 12; ++raw)
        EXPECT_EQ(rawValue(ManagerStateFromRawValue(raw).value()), raw);
    EXPECT_FALSE(ManagerStateFromRawValue(12) || ManagerStateFromRawValue(-1));
    EXPECT_LT(Unknown, BlueToothDisabled);
    EXPECT_EQ(description(Unknown), "Unknown State");
    EXPECT_EQ(description(DeviceDiscoveryTimedout), "DeviceDiscoveryTimedout");
    EXPECT_EQ(description(DeviceCapturedColor), "DeviceCapturedColor State");
    EXPECT_EQ(printed(BlueToothEnabled), "BlueToothEnabled");
    EXPECT_EQ(printed(DeviceDiscoveryTimedout), "DeviceDiscoveryTimedout");
}

TEST(ManagerStateTest, ARandomStateIsNeverTheUpperBound) {
    std::set<ManagerState> drawn;
    for (int i = 0; i < 400; ++i)
        drawn.insert(random(ManagerStateRange(DeviceDiscovered, DeviceDiscoveryTimedout)));
    EXPECT_EQ(drawn, (std::set{DeviceDiscovered, DeviceFailedToDiscover}));
    EXPECT_EQ(random(BlueToothEnabled, BlueToothEnabled), BlueToothEnabled);
}

TEST(ManagerStateDeathTest, ALowerBoundAboveTheUpperIsFatal) {
    EXPECT_DEATH(random(DeviceConnected, Unknown),
                 "Fatal error: Negative value is not representable");
    EXPECT_DEATH(ManagerStateRange(DeviceConnected, Unknown),
                 "Fatal error: Can't form Range with upperBound < lowerBound");
}

TEST(VersionTest, IsAWhatMarkerNamingTheKit) {
    EXPECT_EQ(std::string(InkoraKitVersionString).substr(0, 4), "@(#)");
    EXPECT_NE(std::string(InkoraKitVersionString).find("InkoraKit-1"), std::string::npos);
    EXPECT_EQ(InkoraKitVersionNumber, 1.0);
}

}  // namespace
}  // namespace InkoraKit
