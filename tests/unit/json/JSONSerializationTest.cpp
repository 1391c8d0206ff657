#include <InkoraKit/platform/JSONSerialization.h>

#include "support/EncodedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

using Reading = JSONSerialization::ReadingOptions;
using Writing = JSONSerialization::WritingOptions;

std::string written(const Any& value, Writing options = Writing::none) {
    return JSONSerialization::text(value, options | Writing::allowFragments);
}

/// Reads from memory that ends with the text.
Any read(std::string_view text, Reading options = Reading::allowFragments) {
    const std::vector<char> bytes(text.begin(), text.end());
    return JSONSerialization::jsonObject(std::string_view(bytes.data(), bytes.size()), options);
}

/// What a fault is reported as: "reason … line …, column …. @offset".
std::string faultOf(const NSError& error) {
    EXPECT_EQ(error.domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error.code(), 3840);
    EXPECT_FALSE(error.userInfo().contains(NSLocalizedDescriptionKey));
    std::string text;
    for (const auto& [key, value] : error.userInfo())
        text += (key == NSJSONSerializationErrorIndexKey ? " @" : "") + value.description();
    return text;
}

/// The value in compact form, or the fault.
std::string outcome(std::string_view text, Reading options = Reading::allowFragments) {
    try {
        return written(read(text, options));
    } catch (const NSError& error) {
        return faultOf(error);
    }
}

std::string nested(int depth, const std::string& innermost) {
    std::string opening;
    std::string closing;
    for (int i = 0; i < depth; ++i) {
        opening += i % 2 != 0 ? "{\"a\":" : "[";
        closing.insert(0, i % 2 != 0 ? "}" : "]");
    }
    return opening + innermost + closing;
}

/// The value where it stands alone, in a small text, across the place where the reader goes over
/// to a copy of the text's end, and far before that.
std::vector<Any> readEverywhere(const std::string& value) {
    std::vector<Any> found{read(value)};
    const std::string before(1000, ' ');
    for (const std::size_t after : {std::size_t{0}, 127 - std::min<std::size_t>(value.size(), 120),
                                    127 - value.size() / 2, std::size_t{300}})
        found.push_back(
            *read(before + '[' + value + std::string(after, ' ') + ']').as<Array>()->begin());
    return found;
}

TEST(JSONSerializationTest, TextsOfEveryEncodingAreRead) {
    const std::string text = "{\"é😀\":[\"\uFFFF\"]}";
    const char* cutShort = "Unable to convert data to string around line 1, column 0. @0";
    for (const std::string encoding : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        EXPECT_EQ(outcome(encodedText(text, encoding)), text);
        EXPECT_EQ(outcome(encodedText("[1,\r\n \"é😀\", x]", encoding)),
                  std::string("Invalid value around line 2, column 11. @") +
                      (encoding[4] == '1' ? "26" : "48"));
        const std::string whole = encodedText("[12]", encoding);
        EXPECT_EQ(outcome(whole.substr(0, whole.size() - 1)), cutShort);
    }
    EXPECT_EQ(outcome("\uFEFF{}"), "{}");
    EXPECT_EQ(outcome("\uFEFF[\n,]"), "Invalid value around line 2, column 0. @5");
    EXPECT_EQ(outcome(encodedText("[\"😀\"]", "UTF-16BE").erase(6, 2)), cutShort);
}

TEST(JSONSerializationTest, FaultsAreReportedWhereTheyAre) {
    // clang-format off
    const std::pair<const char*, std::vector<std::pair<std::string, std::size_t>>> cases[] = {
        {"JSON text did not have any content", {{"  ", 2}}},
        {"Unexpected end of file during JSON parse.", {{"{", 0}, {" [[", 2}, {"[{\"a\":", 1},
            {"[{\"a\"", 1}, {"[1,", 0}, {"tru", 0}}},
        {"Unexpected end of file", {{"{\"a\":1", 6}, {"[1 ", 3}}},
        {"Badly formed array", {{"[1 2]", 3}, {"[1}", 2}, {"[nullx]", 5}}},
        {"Badly formed object", {{"{\"a\":1 \"b\":2}", 7}, {"{\"a\":1]", 6}}},
        {"No string key for value in object", {{"{3}", 1}, {"{,}", 1}, {"{\"a\":1,}", 7}}},
        {"No value for key in object", {{"{\"a\" 1}", 5}}},
        {"Invalid value", {{"{\"a\":}", 5}, {"[,]", 1}, {"[1,2,]", 5}, {"[+1]", 1}, {"[.5]", 1},
            {"['a']", 1}, {"[\f1]", 1}, {std::string("[1,\0]", 5), 3}, {"[True]", 1}}},
        {"Something looked like a 'null' but wasn't", {{"[nul]", 1}}},
        {"Something looked like a 'true' but wasn't", {{"[tru]", 1}}},
        {"Something looked like a 'false' but wasn't", {{"[fox]", 1}}},
        {"Garbage at end", {{"{\"a\":1}x", 7}, {"1 2", 2}, {"[]]", 2}}},
        {"Unterminated string", {{"[\"abc", 1}, {"\"abc\\\"", 0},
            {"{\"a longer key than that", 1}}},
        {"Unescaped control character", {{"\"a\tb\"", 2}, {std::string("\"ab\0\"", 5), 3}}},
        {"Invalid escape sequence", {{"[\"a\\e\"]", 3}}},
        {"Invalid hex digit in unicode escape sequence", {{"\"\\u00zz\"", 5},
            {"\"\\ud83d\\u12g4\"", 11}}},
        {"Lone surrogate in unicode escape sequence", {{"\"a\\ud83d\"", 2},
            {"\"\\ude00\\ud83d\"", 1}, {"\"\\ud83d\\ud83d\"", 1}}},
        {"Number with leading zero", {{"[01]", 2}, {"[-00]", 3}}},
        {"Number with minus sign but no digits", {{"[-]", 1}, {"[-a]", 1}}},
        {"Number with decimal point but no additional digits", {{"[1.]", 1}, {"[1.e5]", 1}}},
        {"Number with 'e' but no additional digits", {{"[1e]", 1}, {"[1e+]", 1}}},
        {"Number wound up as NaN", {{"[-1e400]", 1}, {"[1e99999999999999999999]", 1},
            {"[123456789012345678e9223372036854775807]", 1}}},
        {"Unable to convert data to string", {{"\"\xFF\"", 1}, {"[\"abc\xC0\x80\"]", 5},
            {"\"\xED\xA0\x80\"", 1}, {"\"\xF4\x90\x80\x80\"", 1}, {"\"\xE2\x82\"", 1}}},
        {"Too many nested arrays or dictionaries", {{nested(513, "1"), 512 / 2 * 6},
            {nested(513, ""), 512 / 2 * 6}}}};
    // clang-format on
    const auto place = [](std::size_t line, std::size_t column, std::size_t offset) {
        return " around line " + std::to_string(line) + ", column " + std::to_string(column) +
               ". @" + std::to_string(offset);
    };
    const std::string before = "\r\n\r\n" + std::string(1500, ' ');
    for (const auto& [reason, texts] : cases) {
        for (const auto& [text, offset] : texts) {
            EXPECT_EQ(outcome(text), reason + place(1, offset, offset)) << text;
            // As well in the third line, behind more than what is looked at as a whole.
            EXPECT_EQ(outcome(before + text), reason + place(3, 1500 + offset, 1504 + offset));
        }
    }
    EXPECT_EQ(outcome("\xEF\xBB\xBF \n"), "JSON text did not have any content" + place(2, 0, 5));
    EXPECT_EQ(outcome(""), "Unable to parse empty data.");
    for (const char* fragment : {" 12", " \"a\"", " null", " x"})
        EXPECT_EQ(outcome(fragment, Reading::mutableContainers),
                  "JSON text did not start with array or object and option to allow fragments not "
                  "set. around line 1, column 1. @1");
}

TEST(JSONSerializationTest, EveryContainerCountsAsALevel) {
    const std::string wide = "[" + nested(500, "1") + "," + nested(510, "2") + "]";
    for (const std::string& text : {nested(511, "[]"), nested(511, "1"), wide})
        EXPECT_EQ(outcome(text), text);
    EXPECT_TRUE(JSONSerialization::isValidJSONObject(read(nested(511, "{}"))));
    EXPECT_FALSE(JSONSerialization::isValidJSONObject(read(nested(512, "1"))));
    EXPECT_FALSE(JSONSerialization::isValidJSONObject(Array{read(nested(511, "[]"))}));
}

TEST(JSONSerializationTest, NumbersHaveTheKindThatHoldsThem) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"1", "q1"}, {"-1", "q-1"}, {"-0", "q0"}, {"9223372036854775807", "q9223372036854775807"},
        {"9223372036854775808", "Q9223372036854775808"},
        {"18446744073709551615", "Q18446744073709551615"},
        {"18446744073709551616", "decimal 18446744073709551616"},
        {"-9223372036854775808", "q-9223372036854775808"},
        {"-9223372036854775809", "decimal -9223372036854775809"}, {"1.0", "d1"}, {"1e3", "d1000"},
        {"10.00", "d10"}, {"-0.0", "d-0"}, {"0.1", "d0.1"}, {"1E-2", "d0.01"},
        {"3.141592653589793", "d3.141592653589793"},
        {"1.2345678901234567", "d1.2345678901234567"},
        {"1.23456789012345678", "decimal 1.23456789012345678"},
        {"0.30000000000000004", "d0.30000000000000004"},
        {"0.300000000000000040", "decimal 0.30000000000000004"},
        {"0.00000000000000001", "d1e-17"},
        {"0.000000000000000001", "decimal 0.000000000000000001"}, {"1e-999", "d0"},
        {"5e-324", "d5e-324"}, {"1.7976931348623157e+308", "d1.7976931348623157e+308"},
        {"100000000000000000000e-20", "decimal 1"}, {"1.00000000000000000000e300", "d1e+300"},
        {"1e00000000000000000000000003", "d1000"}, {"0e99999999999999999999", "d0"},
        {"123456789012345678e-9223372036854775807", "d0"}};
    // clang-format on
    for (const auto& [text, wanted] : cases) {
        for (const Any& value : readEverywhere(text)) {
            const bool isDecimal = value.slot().tag() == AnySlot::decimal;
            const NSNumber number = *value.as<NSNumber>();
            EXPECT_EQ((isDecimal ? "decimal " : number.objCType()) + number.stringValue(), wanted);
        }
    }
    EXPECT_EQ(std::string(read("true").as<NSNumber>()->objCType()), NSNumber(true).objCType());
}

TEST(JSONSerializationTest, NumeralsOfEveryLengthAreRead) {
    for (std::size_t whole = 1; whole <= 25; ++whole) {
        const std::string integer = std::string("-1928374655647382910192837").substr(0, whole + 1);
        for (const Any& value : readEverywhere(integer)) EXPECT_EQ(written(value), integer);
        for (std::size_t fraction = 1; fraction <= 20; ++fraction) {
            const std::string real = integer + '.' + std::string(fraction - 1, '0') + '7';
            const bool isDecimal = whole + fraction > 17 && whole + fraction <= 38;
            for (const Any& value : readEverywhere(real)) {
                EXPECT_EQ(value.as<NSNumber>()->doubleValue(), std::stod(real)) << real;
                EXPECT_TRUE(!isDecimal || written(value) == real) << "no digit gets lost";
            }
        }
    }
}

TEST(JSONSerializationTest, TextsOfEveryLengthWithAnythingAnywhereAreRead) {
    // clang-format off
    const std::pair<std::string, std::string> parts[] = {
        {"a", "a"}, {"\\n", "\n"}, {"\\\"", "\""}, {"\\\\", "\\"}, {"\\/", "/"}, {"é", "é"},
        {"😀", "😀"}, {"\x7F", "\x7F"}, {"\\u00E9", "é"}, {"\\u20ac", "€"},
        {"\\uD83d\\uDe00", "😀"},
        {"\\ud800\\udc00", "\U00010000"}, {"\\udbff\\udfff", "\U0010FFFF"}, {"\\u0001", "\x01"}, {"\\u0000", std::string(1, '\0')}};
    // clang-format on
    const std::string plain = "A plain text of fifty characters; vectors fill, and end";
    for (const auto& [part, meaning] : parts) {
        for (std::size_t size = 0; size <= 50; ++size) {
            for (std::size_t place = 0; place <= size; ++place) {
                const std::string start = plain.substr(0, place);
                const std::string end = plain.substr(place, size - place);
                const std::string text = '"' + start + part + end + '"';
                for (const Any& value : readEverywhere(text)) {
                    ASSERT_EQ(value.as<std::string_view>(), start + meaning + end) << text;
                    ASSERT_EQ(read(written(value)), value);
                }
                const Any key = read("{" + text + ":" + text + "}");
                ASSERT_TRUE(key.as<Dictionary>()->contains(start + meaning + end)) << text;
                const Any copy(start + meaning + end);  // with nothing behind it
                ASSERT_EQ(written(Array{1, 2, 3, copy}), "[1,2,3," + written(copy) + "]");
                ASSERT_EQ(read(written(copy)), copy);
                const std::string offset = std::to_string(place + 1);
                ASSERT_EQ(outcome('"' + start + '\xFF' + end + '"'),
                          "Unable to convert data to string around line 1, column " + offset +
                              ". @" + offset);
            }
        }
    }
}

TEST(JSONSerializationTest, NothingIsLookedAtBehindTheText) {
    // clang-format off
    const struct { std::string start; std::string part; std::string end; bool isText; } cases[] = {
        {"[1]", " ", "", true},      {"[1]", "\n", "", true},    {"[", " \n", "]", true},
        {"\"", "\\n", "\"", true},   {"\"", "\\n", "", false},   {"\"", "\\u00e9", "\"", true},
        {"\"", "é", "\"", true},     {"\"", "é", "", false},     {"\"", "\\ud83d", "", false},
        {"0.", "1", "", true},       {"1e", "0", "", true},      {"1e-", "9", "", true},
        {"{\"", "k", "\":1}", true}, {"{\"", "\\n", "", false},  {"[0", ",0", "]", true},
        {"[0", ",0", "", false},     {"[", "[]", "", false}};
    // clang-format on
    for (const auto& [start, part, end, isText] : cases) {
        std::string text = start;
        for (int length = 1; length < 1100; ++length) {
            text += part;
            const bool isRead = outcome(text + end).find(" around line ") == std::string::npos;
            ASSERT_EQ(isRead, isText) << text << end;
        }
    }
}

TEST(JSONSerializationTest, OfRepeatedKeysTheLastValueCountsWhereTheFirstStood) {
    EXPECT_EQ(outcome(R"({"b":0,"a":null,"b":{"b":1},"a":1})"), R"({"b":{"b":1},"a":1})");
    EXPECT_EQ(outcome(R"([{"a":{"x":1}},{"a":{"x":1,"x":2},"a":{"x":3}},{"a":[{"x":4}]}])"),
              R"([{"a":{"x":1}},{"a":{"x":3}},{"a":[{"x":4}]}])");
}

struct Thing {};

TEST(JSONSerializationTest, OnlyWhatJSONCanHoldIsWritten) {
    const double infinite = std::numeric_limits<double>::infinity();
    const char* noNumber = "Invalid number value (NaN) in JSON write";
    const char* noContainer = "Invalid top-level type in JSON write";
    // clang-format off
    const std::pair<Any, std::string> cases[] = {
        {Array{}, "[]"}, {Dictionary{}, "{}"}, {Array{Any(), NSNull(), true, false}, "[null,null,true,false]"},
        {Array{1.0, 0.1, -0.0, 0.1f, 1e21, 1e-7, UINT64_MAX, std::int8_t{-1}}, "[1,0.1,-0,0.1,1e+21,1e-07,18446744073709551615,-1]"},
        {Array{NSDecimalNumber("1e127")}, "[1" + std::string(127, '0') + "]"},
        {Array{NSDecimalNumber("-1e-128")}, "[-0." + std::string(127, '0') + "1]"},
        {Array{"a/b\"\\\b\f\n\r\t\x01\x1f\x7f é\u2028😀"}, "[\"a\\/b\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u001f\x7f é\u2028😀\"]"},
        {Dictionary{{"k/\n", Array{}}}, R"({"k\/\n":[]})"},
        {Any(), noContainer}, {NSNull(), noContainer}, {"x", noContainer}, {1, noContainer},
        {Array{infinite}, noNumber}, {Dictionary{{"a", std::nan("")}}, noNumber},
        {Array{1, -std::numeric_limits<float>::infinity()}, noNumber}, {Array{NSDecimalNumber::notANumber()}, noNumber},
        {Array{Dictionary{{"a", Thing()}}}, "Invalid type in JSON write ((object))"},
        {Array{"\xC3"}, "Invalid type in JSON write (\xC3)"}, {Dictionary{{"\xC3", 1}}, "Invalid type in JSON write (\xC3)"}};
    // clang-format on
    for (const auto& [value, wanted] : cases) {
        const bool isWanted = wanted[0] == '[' || wanted[0] == '{';
        EXPECT_EQ(JSONSerialization::isValidJSONObject(value), isWanted) << wanted;
        try {
            EXPECT_EQ(JSONSerialization::data(value), Data::fromText(wanted));
            EXPECT_TRUE(isWanted);
        } catch (const NSError& error) {
            EXPECT_EQ(faultOf(error), wanted);
        }
    }
}

TEST(JSONSerializationTest, TextIsLaidOutAsAskedFor) {
    using enum JSONSerialization::WritingOptions;
    // clang-format off
    const struct { const char* text; Writing options; const char* wanted; } cases[] = {
        {"[]", prettyPrinted, "[\n\n]"}, {"{}", prettyPrinted, "{\n\n}"}, {"1", prettyPrinted, "1"},
        {R"({"key":4})", prettyPrinted, "{\n  \"key\" : 4\n}"},
        {R"({"k":[],"l":1})", prettyPrinted, "{\n  \"k\" : [\n\n  ],\n  \"l\" : 1\n}"},
        {R"([{"a":[1,true]},{}])", prettyPrinted, "[\n  {\n    \"a\" : [\n      1,\n      true\n    ]\n  },\n  {\n\n  }\n]"},
        {R"({"b":"/"})", withoutEscapingSlashes, R"({"b":"/"})"}, {R"({"b":1,"a":2})", none, R"({"b":1,"a":2})"},
        {R"({"C":0,"b":{"y":0,"x":0},"a":0,"A":0,"":0,"Z":0,"ab":0,"B":0})", sortedKeys, R"({"":0,"A":0,"a":0,"ab":0,"B":0,"b":{"x":0,"y":0},"C":0,"Z":0})"},
        {R"({"item10":0,"item9":0,"item2":0,"item02":0,"Item2b":0,"item":0})", sortedKeys, R"({"item":0,"item02":0,"item2":0,"Item2b":0,"item9":0,"item10":0})"},
        {R"({"é":0,"z":0,"10":0,"9":0,"99999999999999999999999":0,"_":0})", sortedKeys, R"({"9":0,"10":0,"99999999999999999999999":0,"_":0,"z":0,"é":0})"}};
    // clang-format on
    for (const auto& [text, options, wanted] : cases)
        EXPECT_EQ(written(read(text), options), wanted);
    // Mostly escapes, and then indentation, of which the writer foresees the length.
    const Any deep = Array{std::string(150'000, '\1'), read(nested(500, "1"))};
    EXPECT_EQ(read(written(deep, prettyPrinted)), deep);
}

}  // namespace
}  // namespace InkoraKit
