#include <InkoraKit/ManagerState.h>
#include <InkoraKit/Version.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UIColor.h>
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
    const std::string text = "0c50d390-dc8e-436b-8ad0-a36d1b304b18";
    EXPECT_EQ(UUID::fromString(text).value().uuidString(), "0C50D390-DC8E-436B-8AD0-A36D1B304B18");
    for (const std::string wrong :
         {"", "1F1F", "0c50d390dc8e436b8ad0a36d1b304b18", "0c50d390-dc8e-436b-8ad0-a36d1b304b1",
          "0c50d390-dc8e-436b-8ad0-a36d1b304b1g", "0c50d390_dc8e-436b-8ad0-a36d1b304b18",
          "0c50d390-dc8e-436b-8ad0-a36d1b304b18 "})
        EXPECT_FALSE(UUID::fromString(wrong)) << wrong;
    const UUID random;  // of version 4
    EXPECT_NE(random, UUID());
    EXPECT_EQ(random.uuidString()[14], '4');
    EXPECT_NE(std::string("89AB").find(random.uuidString()[19]), std::string::npos);
}

TEST(CBUUIDTest, ShowsTheShortestFormOfItsValue) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"1f1f", "1F1F"}, {"0000180f", "180F"}, {"12345678", "12345678"},
        {"00345678", "00345678"}, {"12005678", "12005678"},
        {"00001f14-0000-1000-8000-00805f9b34fb", "1F14"},
        {"12345678-0000-1000-8000-00805f9b34fb", "12345678"},
        {"12345678-0000-1000-8000-00805f9b34fc", "12345678-0000-1000-8000-00805F9B34FC"}};
    // clang-format on
    for (const auto& [text, shown] : cases) EXPECT_EQ(CBUUID(text).uuidString(), shown) << text;
    EXPECT_EQ(CBUUID("1234"), CBUUID("00001234-0000-1000-8000-00805f9b34fb"));
    EXPECT_NE(CBUUID("1234"), CBUUID("12345678"));
    EXPECT_EQ(std::hash<CBUUID>{}(CBUUID("1234")), std::hash<CBUUID>{}(CBUUID("00001234")));
    EXPECT_EQ(CBUUID("180F").description(), "Battery");
    EXPECT_EQ(CBUUID("1F1F").description(), "1F1F");
}

TEST(CBUUIDTest, RefusesWhatIsNoUUID) {
    for (const std::string text : {"", "1F1", "xyzw", "1F1F1", "0c50d390dc8e436b8ad0a36d1b304b18"})
        try {
            ADD_FAILURE() << CBUUID(text).uuidString();
        } catch (const std::invalid_argument& error) {
            EXPECT_EQ(error.what(), "String " + text + " does not represent a valid UUID");
        }
}

TEST(DataTest, EncodesAsLowerCaseHexadecimal) {
    EXPECT_EQ((Data{0x00, 0x0A, 0xFF}).hexEncodedString(), "000aff");
    EXPECT_EQ(Data().hexEncodedString(), "");
    EXPECT_EQ((Data{1, 2, 3, 4}).description(), "4 bytes");
}

TEST(UIColorTest, KeepsColoursOutsideSRGBAndClampsOpacity) {
    EXPECT_EQ(UIColor(2, -1, 0.5, 3).components(), (UIColor::Components{2, -1, 0.5, 1}));
    EXPECT_EQ(UIColor(0, 0, 0, -1).alpha(), 0);
    EXPECT_EQ(UIColor(1, 0, 0, 1), UIColor(1, 0, 0, 2));
    EXPECT_NE(UIColor(1, 0, 0, 1), UIColor(1, 0, 0, 0.5));
}

TEST(UIColorTest, DescribesItselfInSixDigits) {
    EXPECT_EQ(UIColor(1, 128 / 255.0, 0, 1).description(),
              "UIExtendedSRGBColorSpace 1 0.501961 0 1");
    EXPECT_EQ(UIColor(-0.5, 1 / 255.0, 1e-9, 0).description(),
              "UIExtendedSRGBColorSpace -0.5 0.00392157 1e-09 0");
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
    EXPECT_EQ(NSError("D", 17).description(), "Error Domain=D Code=17 \"(null)\"");
    EXPECT_EQ(cases[1].first.description(),
              "Error Domain=D Code=5 \"x\" UserInfo={NSLocalizedDescription=x}");
}

TEST(NSErrorTest, IsEqualByDomainCodeAndInformation) {
    const NSError error("D", 5, {{"k", 1}});
    EXPECT_EQ(error, NSError("D", 5, {{"k", 1.0}}));
    EXPECT_EQ(std::hash<NSError>{}(error), std::hash<NSError>{}(NSError("D", 5, {{"k", 1}})));
    for (const NSError& other :
         {NSError("D", 5), NSError("D", 6, {{"k", 1}}), NSError("E", 5, {{"k", 1}})})
        EXPECT_FALSE(error == other);
}

TEST(ManagerStateTest, HasTheTwelveStatesInOrder) {
    for (int raw = 0; raw < 12; ++raw)
        EXPECT_EQ(rawValue(ManagerStateFromRawValue(raw).value()), raw);
    EXPECT_FALSE(ManagerStateFromRawValue(12) || ManagerStateFromRawValue(-1));
    EXPECT_LT(Unknown, BlueToothDisabled);
    EXPECT_EQ(description(Unknown), "Unknown State");
    EXPECT_EQ(description(DeviceDiscoveryTimedout), "DeviceDiscoveryTimedout");
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
    EXPECT_DEATH_IF_SUPPORTED(random(DeviceConnected, Unknown),
                              "Fatal error: Negative value is not representable");
    EXPECT_DEATH_IF_SUPPORTED(ManagerStateRange(DeviceConnected, Unknown),
                              "Fatal error: Can't form Range with upperBound < lowerBound");
}

TEST(VersionTest, IsAWhatMarkerNamingTheKit) {
    EXPECT_EQ(std::string(InkoraKitVersionString).substr(0, 4), "@(#)");
    EXPECT_NE(std::string(InkoraKitVersionString).find("InkoraKit-1"), std::string::npos);
    EXPECT_EQ(InkoraKitVersionNumber, 1.0);
}

}  // namespace
}  // namespace InkoraKit
