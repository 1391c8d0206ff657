#include "BusMessage.h"
#include "Seeds.h"

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

TEST(BusMessageFuzzTest, EverySeedIsReadAsFarAsItFits) {
    const auto seeds = seedsOf("bus-message");
    for (const auto& [name, script] : seeds)
        EXPECT_EQ(readBusMessage(script), !name.starts_with("refused-")) << name;
    EXPECT_GE(seeds.size(), 8u);
}

}  // namespace
}  // namespace InkoraKit
