#include "platform/bluetooth/ReportedAdvertisers.h"

#include <gtest/gtest.h>

#include <cstring>

namespace InkoraKit {
namespace {

TEST(ReportedAdvertisersTest, OneThatGoesOnBeingHeardIsNewsByItsNameAlone) {
    ReportedAdvertisers reported;
    const UUID pen;
    std::uint32_t passersBy = 0;
    EXPECT_TRUE(reported.isNews(pen, std::nullopt));
    const UUID silent;
    EXPECT_TRUE(reported.isNews(silent, "Lamp"));
    for (const char* name : {"InkoraPen", "HuveloPen"}) {
        EXPECT_TRUE(reported.isNews(pen, name));
        for (int passer = 0; passer < 60'000; ++passer) {
            UUID::Bytes bytes{};
            ++passersBy;
            std::memcpy(&bytes[4], &passersBy, sizeof passersBy);
            ASSERT_TRUE(reported.isNews(UUID(bytes), "Passer")) << passer;
            if (passer % 20'000 != 0) continue;
            ASSERT_FALSE(reported.isNews(pen, name)) << passer;
            ASSERT_FALSE(reported.isNews(pen, std::nullopt)) << passer;
        }
    }
    EXPECT_TRUE(reported.isNews(silent, "Lamp")) << "the crowd that is remembered has a limit";
    reported.clear();
    EXPECT_TRUE(reported.isNews(pen, "HuveloPen"));
}

}  // namespace
}  // namespace InkoraKit
