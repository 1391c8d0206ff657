#include "Seeds.h"
#include "support/PenScript.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace InkoraKit {
namespace {

/// Every line that any transcript plays.
std::vector<std::string> allLines() {
    std::vector<std::string> lines;
    for (const auto& [name, transcript] : seedsOf("pen-script")) {
        std::istringstream text(transcript);
        for (std::string line; std::getline(text, line);)
            if (!line.starts_with(' ') && !line.starts_with('#')) lines.push_back(line);
    }
    return lines;
}

TEST(PenScriptTest, ThousandsOfRandomOrdersEndOnlyWhereTheyAreMeantTo) {
    testing::internal::CaptureStderr();  // misuse is part of the game
    const std::vector<std::string> lines = allLines();
    std::mt19937 random(20240817);
    for (int i = 0; i < 2000; ++i) {
        std::string script = i % 2 ? "paired\n" : "scanning\n";
        for (auto left = random() % 60; left > 0; --left)
            script += lines[random() % lines.size()] + (random() % 2 ? "\nrun\n" : "\n");
        PenScript(Accounting::byScript).play(script);
    }
    testing::internal::GetCapturedStderr();
}

TEST(PenScriptDeathTest, AStopThatNothingAccountsForIsNoticed) {
    const auto seeds = seedsOf("pen-script");
    for (const char* seed : {"colour-of-one-byte", "battery-too-long", "discovery-that-fails"})
        EXPECT_DEATH_IF_SUPPORTED(PenScript(Accounting::none).play(seeds.at(seed)),
                                  "unaccounted fatal stop")
            << seed;
}

}  // namespace
}  // namespace InkoraKit
