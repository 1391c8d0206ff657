#include "Seeds.h"
#include "TraceText.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>

namespace InkoraKit {
namespace {

TEST(TraceTextFuzzTest, EveryEventIsWrittenAsItIsRead) {
    const std::string trace = seedsOf("trace-text").at("every-event");
    const std::string withAddresses =
        std::regex_replace(trace, std::regex("xx(.)xx.xx.xx.xx"), "F0$1E1$1D2$1C3$1B4");
    const std::regex time("\"at\":[^,]*,");
    for (const std::string& played : {trace, withAddresses})
        EXPECT_EQ(std::regex_replace(replayTrace(played).value_or("refused"), time, ""),
                  std::regex_replace(trace, time, ""));
}

TEST(TraceTextFuzzTest, AThousandBrokenTracesAreRefusedOrPlayed) {
    const std::string trace = seedsOf("trace-text").at("every-event");
    std::mt19937 random(20261122);
    int played = 0;
    for (int i = 0; i < 1000; ++i) {
        std::string broken = trace;
        for (auto left = 1 + random() % 3; left > 0; --left) {
            const auto position = random() % broken.size();
            switch (random() % 3) {
                case 0:
                    broken[position] = static_cast<char>(random());
                    break;
                case 1:
                    broken[position] = static_cast<char>('0' + random() % 10);
                    break;
                default:
                    broken.erase(position, random() % 8);
                    break;
            }
        }
        played += replayTrace(broken).has_value() ? 1 : 0;
    }
    EXPECT_GT(played, 10);
    EXPECT_LT(played, 990);
}

}  // namespace
}  // namespace InkoraKit
