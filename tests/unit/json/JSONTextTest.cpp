#include <InkoraKit/InkoraGlobalData.h>
#include <InkoraKit/JSON.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <utility>

namespace InkoraKit {
namespace {

using enum writtingOptionsKeys;
using Options = std::map<writtingOptionsKeys, Any>;
using WritingOptions = JSONSerialization::WritingOptions;

std::string compact(const JSON& json) {
    return json.rawString(StringEncoding::utf8, WritingOptions::none).value_or("none");
}

/// What is thrown: its domain, code and text.
std::string errorOf(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const NSError& error) {
        return error.domain() + ' ' + std::to_string(error.code()) + ' ' + error.what();
    }
    return "no error";
}

JSON nested(int depth, const JSON& innermost) {
    JSON json = innermost;
    for (int i = 0; i < depth; ++i) json = JSON::arrayOf(json);
    return json;
}

TEST(JSONTextTest, OnlyContainersHaveData) {
    EXPECT_EQ(JSON::parse("[1, {}]").rawData(), Data::fromText("[1,{}]"));
    JSON nan = JSON::arrayOf(std::nan(""));
    JSON holdsJSON;
    holdsJSON.setObject(std::map<std::string, JSON>{{"k", 1}});
    for (const JSON& json : {JSON("x"), JSON(1), JSON(true), JSON(), JSON(NSError("", 0)), nan,
                             holdsJSON, JSON(Array{NSError("", 0)}), nested(513, JSON())})
        for (const auto options : {WritingOptions::none, WritingOptions::allowFragments})
            EXPECT_EQ(errorOf([&] { (void)json.rawData(options); }),
                      "LitheJSONErrorDomain 490 JSON is invalid");
    EXPECT_EQ(nan.rawString(), std::nullopt);
    EXPECT_EQ(nan.description() + JSON(NSError("", 0)).description(), "unknownunknown");
    std::ostringstream stream;
    stream << JSON{{"a", JSON::arrayOf(1)}} << JSON("a\"b") << JSON(true) << JSON();
    EXPECT_EQ(stream.str(), "{\n  \"a\" : [\n    1\n  ]\n}a\"btruenull");
}

TEST(JSONTextTest, OptionsOfAnotherKindCountAsLeftOut) {
    const JSON json = JSON::arrayOf("é/");
    const std::string pretty = "[\n  \"é\\/\"\n]";
    // clang-format off
    const std::pair<Options, std::optional<std::string>> cases[] = {
        {{}, pretty},                             {{{encoding, StringEncoding::ascii}}, std::nullopt},
        {{{jsonSerialization, WritingOptions::none}}, R"(["é\/"])"},
        {{{encoding, StringEncoding::isoLatin1}}, "[\n  \"Ã©\\/\"\n]"},
        {{{encoding, 5}, {jsonSerialization, 0}}, pretty},  // plain integers are neither
        {{{jsonSerialization, true}, {maxObjextDepth, 0.5}, {encoding, "x"}}, pretty},
        {{{castNilToNSNull, 1}, {maxObjextDepth, true}}, pretty},
        {{{castNilToNSNull, Data::fromText("true")}}, pretty}};
    // clang-format on
    for (const auto& [options, text] : cases) EXPECT_EQ(json.rawString(options), text);
    EXPECT_EQ(JSON("é").rawString(StringEncoding::ascii), "é");
}

TEST(JSONTextTest, AbsentValuesCanBeCastToNullToALimitedDepth) {
    const auto written = [](const JSON& json, Any depth) {
        testing::internal::CaptureStdout();
        const auto text = json.rawString({{castNilToNSNull, true}, {maxObjextDepth, depth}});
        return text.value_or("none") + testing::internal::GetCapturedStdout();
    };
    // clang-format off
    const struct { JSON json; Any depth; std::string text; } cases[] = {
        {Array{"x", Any(), 3}, {}, R"(["x",null,3])"},
        {Dictionary{{"k", "a\"b\\/\n"}}, {}, "{\"k\": \"a\\\"b\\\\/\n\"}"},
        {Dictionary{{"k\"", Any()}, {"n", NSNull()}}, {}, R"({"k"": null,"n": null})"},
        {Array{true, 1.5, Array{}, Dictionary{}}, {}, "[true,1.5,[],{}]"},
        {Array{Data::fromText(R"({"a":[1,2]})"), Data::fromText("?")}, {}, R"([{"a": [1,2]},null])"},
        {Array{Array{NSError("", 0)}}, {}, "none"},   {JSON("a\"b"), {}, "a\"b"},   {JSON(), {}, "null"},
        {nested(10, 1), {}, "[[[[[[[[[[1]]]]]]]]]]"}, {nested(11, 1), {}, "none"},
        {nested(11, 1), 20, "[[[[[[[[[[[1]]]]]]]]]]]"}, {nested(1, 1), 0, "none"},
        {nested(1, NSNull()), 0, "none"},             {Array{Any()}, 0, "[null]"},  // absent
        {nested(1, Array{}), 1, "[[]]"},              {"x", 0, "x"},
        {nested(3, 1), true, "[[[1]]]"}, {nested(3, 1), 1.5, "[[[1]]]"}};  // no depths
    // clang-format on
    for (const auto& [json, depth, text] : cases) EXPECT_EQ(written(json, depth), text);
    for (const JSON& json : {JSON("x"), nested(1, 1)})
        EXPECT_EQ(written(json, -1),
                  "noneCould not serialize object to JSON because: Element too deep. Increase "
                  "maxObjectDepth and make sure there is no reference loop\n");
}

// What merging and comparing give otherwise, the fuzz tests hold against another library's values.

TEST(JSONTextTest, MergingConvertsAndRefusesOtherTypes) {
    JSON json = 1;
    for (const JSON& other : {JSON("x"), JSON(true), JSON()})
        EXPECT_EQ(errorOf([&] { json.merge(other); }),
                  "LitheJSONErrorDomain 901 "
                  "Couldn't merge, because the JSONs differ in type on top level.");
    EXPECT_EQ(compact(json) + compact(json.merged(2)) + compact(json), "121");
    JSON objects(Dictionary{{"a", Array{NSError("", 0)}}, {"b", Data::fromText("[1]")}, {"o", 1}});
    objects.merge(
        Dictionary{{"a", Array{Data::fromText("[2]")}}, {"b", Array{2}}, {"o", NSError("", 0)}});
    EXPECT_EQ(compact(objects), R"({"a":[null,[2]],"b":[1,2],"o":null})");
    JSON gaps(std::vector<Any>(1));
    gaps.merge(gaps);
    EXPECT_EQ(gaps.arrayObject(), (Array{NSNull(), NSNull()}));
}

TEST(JSONTextTest, ComparesWithinOneType) {
    const JSON unknown(NSError("", 0));
    const JSON list = JSON::arrayOf(1, true);
    // clang-format off
    const struct { JSON left; bool isEqual, isLess, isGreater; JSON right; } cases[] = {
        {1, false, true, false, 2},           {UINT64_MAX, false, false, true, -1},
        {1, true, false, false, 1.0},         {"x", true, false, false, "x"},
        {JSON(), true, false, false, Any()},  {list, true, false, false, JSON::arrayOf(1.0, 1)},
        {unknown, false, false, false, unknown}, {true, false, false, false, 1},
        {"Z", false, true, false, "a"},       {false, false, false, false, true}};
    // clang-format on
    for (const auto& [left, isEqual, isLess, isGreater, right] : cases) {
        SCOPED_TRACE(left.description() + " and " + right.description());
        EXPECT_TRUE((left == right) == isEqual && (left != right) == !isEqual);
        EXPECT_TRUE((left < right) == isLess && (left > right) == isGreater);
        EXPECT_TRUE((left <= right) == (isLess || isEqual));
        EXPECT_TRUE((left >= right) == (isGreater || isEqual));
        EXPECT_TRUE(!isEqual || left.hash() == right.hash());
    }
    const NSNumber yes = true;
    EXPECT_TRUE(yes != 1 && yes == NSNumber(true) && yes > NSNumber(false) && NSNumber(1) >= 0.5);
    EXPECT_FALSE(yes == 1 || yes < 2 || yes > 0 || yes <= 1 || yes >= 1);
}

TEST(JSONTextTest, DepthCostsNoDepthOfCalls) {
    constexpr int depth = 100000;
    const auto built = [](const JSON& innermost) {
        JSON json = innermost;
        for (int i = 0; i < depth; ++i)
            json = i % 2 ? JSON{{"k", json}} : JSON{{"k", json}, {"n", 1}};
        return json;
    };
    JSON json = built(JSON::arrayOf("a text that needs memory"));
    JSON copy = json.detached();
    EXPECT_TRUE(json == copy && copy.hash() == json.hash());
    EXPECT_NE(json.object().slot().pointer(), copy.object().slot().pointer());
    json.merge(built(JSON::arrayOf(2)));
    EXPECT_FALSE(json == copy);
    EXPECT_THROW((void)json.rawData(), NSError);
    EXPECT_FALSE(json.rawString());
    const auto text = json.rawString({{castNilToNSNull, true}, {maxObjextDepth, INT64_MAX}});
    ASSERT_TRUE(text);
    EXPECT_NE(text->find(R"({"k": ["a text that needs memory",2],"n": 1})"), std::string::npos);

    JSONPath path;
    for (int i = 0; i < depth; ++i) path.append("k");
    json[path] = "innermost";
    EXPECT_EQ(json[path], "innermost");
    EXPECT_EQ(copy[path][0], "a text that needs memory");
}

TEST(JSONTextTest, WhatIsSharedAndWhatIsThereCostNoTimeAgain) {
    const auto doubled = [] {
        JSON json = JSON::arrayOf("innermost");
        for (int i = 0; i < 60; ++i) json = JSON{{"l", json}, {"r", json}};
        return json;
    };
    EXPECT_TRUE(doubled() == doubled() && doubled().hash() == doubled().hash());
    JSON json{{"a", JSON::arrayOf()}};
    const JSON one{{"a", JSON::arrayOf(1)}};
    for (int i = 0; i < 100000; ++i) {
        json.merge(one);
        json["a"].merge(one["a"]);
    }
    EXPECT_EQ(json["a"].count(), 200000u);
}

TEST(JSONTextTest, GlobalDataTakesDictionariesOnly) {
    EXPECT_EQ(InkoraGlobalData::convertToDictionary(R"({"a":1})"), (Dictionary{{"a", 1}}));
    const std::pair<const char*, int> others[] = {
        {"[1]", 0}, {"{\"\xFF\":1}", 0}, {"", 1}, {"5", 1}, {"{", 1}};
    for (const auto& [text, reasons] : others) {
        testing::internal::CaptureStdout();
        EXPECT_FALSE(InkoraGlobalData::convertToDictionary(text));
        const std::string said = testing::internal::GetCapturedStdout();
        EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), reasons);
    }
}

}  // namespace
}  // namespace InkoraKit
