#include <InkoraKit/platform/UIColor.h>

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

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

}  // namespace
}  // namespace InkoraKit
