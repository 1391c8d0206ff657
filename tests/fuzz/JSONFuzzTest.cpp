#include "JSONChanges.h"
#include "JSONText.h"
#include "PlainJSON.h"
#include "Seeds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace InkoraKit {
namespace {

TEST(JSONFuzzTest, TextsReadAsTheyDoPlainly) {
    std::vector<std::string> texts;
    for (const auto& [name, text] : seedsOf("json-text")) {
        SCOPED_TRACE(name);
        checkJSONText(text);
        const bool isMeantToFail = name.starts_with("refused-");
        EXPECT_EQ(JSON(Data::fromText(text)).type() == Type::null, isMeantToFail);
        texts.push_back(text);
    }
    ASSERT_GE(texts.size(), 20u);

    constexpr std::string_view bytes =
        "[]{}\",:\\/ue0123456789-+.tfn \n\x01\xC3\xA9\xF0\x9F\x98\x80";
    std::mt19937 random(20240917);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int i = 0; i < 20000; ++i) {
        std::string text = texts[below(texts.size())];
        for (auto left = below(4); left > 0; --left) {
            const std::string inserted[] = {
                "", {bytes[below(bytes.size())]}, texts[below(texts.size())]};
            text.replace(below(text.size() + 1), below(5), inserted[below(3)]);
        }
        const std::vector<char> exact(text.begin(), text.end());  // with nothing behind
        checkJSONText({exact.data(), exact.size()});
    }
}

/// A record with a member for each of the numbers. Its keys are short, each the beginning of the
/// next, of one length beyond that of a short text, or of any length.
std::string recordOf(std::size_t form, const std::vector<std::size_t>& numbers) {
    std::string text;
    for (const std::size_t number : numbers) {
        const std::string digits = std::to_string(number);
        const std::string keys[] = {"k" + digits, std::string(number, 'p'),
                                    "a longer key, " + std::string(5 - digits.size(), '0') + digits,
                                    std::string(number % 30, 'x') + digits};
        text += (text.empty() ? "{\"" : ", \"") + keys[form] + "\":" + std::to_string(text.size());
    }
    return text.empty() ? "{}" : text + '}';
}

TEST(JSONFuzzTest, RecordsReadAsTheyDoPlainly) {
    std::mt19937 random(7);
    for (std::size_t round = 0; round < 600; ++round) {
        std::vector<std::size_t> numbers(1 + random() % (round % 2 == 0 ? 20 : 140));
        std::iota(numbers.begin(), numbers.end(), 0);
        std::string text;
        for (int i = 0; i < 10; ++i) {  // mostly alike
            auto changed = numbers;
            const auto place = changed.begin() + static_cast<int>(random() % numbers.size());
            const auto kind = random() % 10;
            if (kind == 0) changed.insert(place, 777);
            if (kind == 1) changed.push_back(*place);
            if (kind == 2) changed.erase(place);
            if (kind == 3) std::reverse(place, changed.end());
            const std::size_t form = kind == 4 ? random() % 4 : round / 2 % 4;
            text += (text.empty() ? '[' : ',') + recordOf(form, changed);
        }
        ASSERT_TRUE(matches(*parsePlainly(text + ']'), JSON::parse(text + ']'))) << text;
    }
}

TEST(JSONFuzzTest, ChangesDoWhatTheyDoPlainly) {
    std::vector<std::string> lines;
    for (const auto& [name, script] : seedsOf("json-changes")) {
        SCOPED_TRACE(name);
        runJSONChanges(script);
        std::istringstream steps(script);
        for (std::string line; std::getline(steps, line);) lines.push_back(line + '\n');
    }
    ASSERT_GE(lines.size(), 50u);

    std::mt19937 random(20241003);
    for (int i = 0; i < 1000; ++i) {
        std::string script;
        for (auto left = random() % 60; left > 0; --left) script += lines[random() % lines.size()];
        runJSONChanges(script);
    }
}

TEST(JSONFuzzDeathTest, ADifferenceIsNoticed) {
    EXPECT_DEATH_IF_SUPPORTED(require(matches({1}, JSON::arrayOf(2)), "1 is 2"), "not so: 1 is 2");
    EXPECT_FALSE(matches({{"a", 1}}, JSON{{"b", 1}}) || matches("x", "y") || matches(true, 1));
}

}  // namespace
}  // namespace InkoraKit
