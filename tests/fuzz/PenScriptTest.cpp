#include "PenScript.h"
#include "Seeds.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace InkoraKit {
namespace {

TEST(PenScriptTest, EverySeedEndsOnlyWhereItIsMeantTo) {
    testing::internal::CaptureStderr();  // misuse is part of the game
    const auto seeds = seedsOf("pen-script");
    for (const auto& [name, script] : seeds) runPenScript(script);
    testing::internal::GetCapturedStderr();
    EXPECT_GE(seeds.size(), 10u);
}

/// A script of lines drawn from those that make sense, in any order.
std::string randomScript(std::mt19937& random) {
    constexpr std::array lines = {
        "start",
        "start",
        "publish",
        "unpublish",
        "stop",
        "battery",
        "proximity",
        "info",
        "run",
        "run",
        "run",
        "wait 1",
        "wait 65",
        "adapter 5",
        "adapter 5",
        "adapter 4",
        "adapter 1",
        "sight 0 InkoraPen",
        "sight 0 InkoraPen",
        "sight 1 HuveloPen",
        "sight 2 Lamp",
        "sight 0",
        "connected 0",
        "connected 0",
        "connected 1",
        "failed 0",
        "lost 0",
        "gone 0",
        "gone 1",
        "services 0 1",
        "services 0 1",
        "services 0 1 5 9",
        "services 0",
        "services 0 !",
        "characteristics 0 1 2 3",
        "characteristics 0 1 2 3",
        "characteristics 0 5 2 4",
        "characteristics 0 1",
        "characteristics 0 1 !",
        "read 0 2 01ff8000",
        "read 0 3 64",
        "read 0 2 !",
        "read 0 2 -",
        "notify 0 2 01ff8000",
        "notify 0 2 01010101",
        "notify 0 2 0100",
        "notify 0 2",
        "notify 0 3 80000000000000ff",
        "notify 0 3",
        "notify 0 3 0064",
        "subscribed 0 2",
        "subscribed 0 2 !",
        "rssi 0 -57",
        "name 0 Other",
    };
    std::string script = "publish\nstart\nrun\nadapter 5\nrun\n";
    for (auto left = random() % 60; left > 0; --left) {
        script += lines[random() % lines.size()];
        script += '\n';
        if (random() % 2) script += "run\n";
    }
    return script;
}

TEST(PenScriptTest, ThousandsOfRandomOrdersEndOnlyWhereTheyAreMeantTo) {
    testing::internal::CaptureStderr();
    std::mt19937 random(20240817);
    for (int i = 0; i < 5000; ++i) runPenScript(randomScript(random));
    testing::internal::GetCapturedStderr();
}

TEST(PenScriptDeathTest, AStopThatNothingAccountsForIsNoticed) {
    const auto seeds = seedsOf("pen-script");
    for (const char* seed : {"short-colour", "battery-too-long", "discovery-fails"})
        EXPECT_DEATH(runPenScript(seeds.at(seed), Accounting::none), "unaccounted fatal stop")
            << seed;
}

}  // namespace
}  // namespace InkoraKit
