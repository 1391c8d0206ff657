#include "JSONChanges.h"
#include "JSONText.h"
#include "PlainJSON.h"
#include "Seeds.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace InkoraKit {
namespace {

TEST(JSONFuzzTest, EverySeedReadsAsItDoesPlainly) {
    const auto seeds = seedsOf("json-text");
    for (const auto& [name, text] : seeds) {
        SCOPED_TRACE(name);
        checkJSONText(text);
        const bool isMeantToFail = name.starts_with("refused-");
        EXPECT_EQ(JSON(Data::fromText(text)).type() == Type::null, isMeantToFail);
    }
    EXPECT_GE(seeds.size(), 20u);
}

TEST(JSONFuzzTest, ThousandsOfSpoiledTextsReadAsTheyDoPlainly) {
    std::vector<std::string> texts;
    for (const auto& [name, text] : seedsOf("json-text")) texts.push_back(text);
    constexpr std::string_view bytes =
        "[]{}\",:\\/ue0123456789-+.tfn \n\x01\xC3\xA9\xF0\x9F\x98\x80";
    std::mt19937 random(20240917);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int i = 0; i < 20000; ++i) {
        std::string text = texts[below(texts.size())];
        for (auto left = below(4); left > 0 && !text.empty(); --left) {
            const std::size_t place = below(text.size());
            switch (below(4)) {
                case 0:
                    text[place] = bytes[below(bytes.size())];
                    break;
                case 1:
                    text.insert(place, 1, bytes[below(bytes.size())]);
                    break;
                case 2:
                    text.erase(place, below(5));
                    break;
                default:
                    text.insert(place, texts[below(texts.size())]);
            }
        }
        const std::vector<char> exact(text.begin(), text.end());  // with nothing behind
        checkJSONText({exact.data(), exact.size()});
    }
}

TEST(JSONFuzzTest, EverySeedChangesValuesAsItDoesPlainly) {
    const auto seeds = seedsOf("json-changes");
    for (const auto& [name, script] : seeds) {
        SCOPED_TRACE(name);
        runJSONChanges(script);
    }
    EXPECT_GE(seeds.size(), 10u);
}

TEST(JSONFuzzTest, ThousandsOfRandomChangesAreAsTheyArePlainly) {
    std::vector<std::string> lines;
    for (const auto& [name, script] : seedsOf("json-changes")) {
        std::istringstream steps(script);
        for (std::string line; std::getline(steps, line);) lines.push_back(line + '\n');
    }
    std::mt19937 random(20241003);
    for (int i = 0; i < 1000; ++i) {
        std::string script;
        for (auto left = random() % 60; left > 0; --left) script += lines[random() % lines.size()];
        runJSONChanges(script);
    }
}

TEST(JSONFuzzDeathTest, ADifferenceIsNoticed) {
    EXPECT_DEATH(require(PlainJSON::parse("[1]")->matches(JSON::parse("[2]")), "1 is 2"),
                 "not so: 1 is 2");
    EXPECT_FALSE(*PlainJSON::parse("[1,[true]]") == *PlainJSON::parse("[1,[2]]"));
    EXPECT_FALSE(PlainJSON::parse("{\"a\":1}")->matches(JSON::parse("{\"b\":1}")));
}

}  // namespace
}  // namespace InkoraKit
