#include <InkoraKit/JSON.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <variant>
#include <vector>

namespace InkoraKit {
namespace {

struct Date {};

std::string compact(const JSON& json) {
    using enum JSONSerialization::WritingOptions;
    return json.rawString(StringEncoding::utf8, none).value_or("none");
}

static_assert(std::is_convertible_v<const char*, JSON> && std::is_convertible_v<Any, JSON>);
static_assert(std::is_constructible_v<JSON, Date> && !std::is_convertible_v<Date, JSON>);
static_assert(std::is_nothrow_move_constructible_v<JSON>);
template <class... T>
constexpr bool noneCanBeJSON = (!std::is_constructible_v<JSON, T> && ...);
static_assert(noneCanBeJSON<void*, int*, Type, Type*, char, char8_t, wchar_t, long double,
                            std::pair<const char*, int>, std::variant<int>, std::optional<Date>,
                            std::vector<Date>, std::vector<char>, std::map<int, int>>);
static_assert(!std::is_assignable_v<JSON, int> && std::is_assignable_v<JSONPlace, int>);

TEST(JSONTest, ValuesOfCPlusPlusBecomeWhatTheyStandFor) {
    using enum Type;
    const JSON inner = 5;
    const std::optional<int> noNumber;
    const std::map<std::string, std::vector<JSON>> map{{"k", {1, "x"}}};
    const int ports[]{1, 2};
    // clang-format off
    const struct { JSON json; Type type; std::string text; } cases[] = {
        {nullptr, null, "null"},        {static_cast<const char*>(nullptr), null, "null"},
        {std::nullopt, null, "null"},   {Any(), null, "null"},       {NSNull(), null, "null"},
        {"", string, ""},               {"true", string, "true"},
        {std::string_view("a\"b"), string, "a\"b"},                  {noNumber, null, "null"},
        {true, bool_, "true"},          {NSNumber(false), bool_, "false"},
        {1, number, "1"},               {std::int8_t{1}, number, "1"},
        {UINT64_MAX, number, "18446744073709551615"},                {1.5f, number, "1.5"},
        {NSDecimalNumber("1e3"), number, "1000"},
        {std::optional<JSON>(inner), number, "5"},
        {JSON{inner}, number, "5"},     // no array of one
        {std::vector<int>{}, array, "[]"},           {std::vector<bool>{true}, array, "[true]"},
        {std::vector<JSON>{}, array, "[]"},
        {std::vector<std::vector<JSON>>{{1}, {}}, array, "[[1],[]]"},
        {std::vector<std::optional<JSON>>{inner, {}}, array, "[5,null]"},
        {JSON::arrayOf(1, "two", JSON::arrayOf()), array, R"([1,"two",[]])"},
        {map, dictionary, R"({"k":[1,"x"]})"},       {std::map<std::string, JSON>{}, dictionary, "{}"},
        {JSON{{"b", inner}, {"a", {{"c", 1}}}, {"b", 2}}, dictionary, R"({"b":2,"a":{"c":1}})"},
        {Data::fromText("true"), bool_, "true"},     {Data::fromText("1"), number, "1"},
        {Data::fromText("[1"), null, "null"},
        {std::vector<Data>{Data::fromText("[1]")}, array, "[[1]]"},
        {std::array{1, 2}, array, "[1,2]"},          {std::set<std::string>{"b", "a"}, array, R"(["a","b"])"},
        {std::deque<std::optional<JSON>>{inner, {}}, array, "[5,null]"},
        {std::map<std::string_view, std::set<int>>{{"k", {1}}}, dictionary, R"({"k":[1]})"},
        {std::vector<std::uint8_t>{1}, array, "[1]"},
        {ports, array, "[1,2]"},                     {std::span(ports).last(1), array, "[2]"},
        {JSON(Date()), unknown, "none"},             {"\xFF", unknown, "none"}};
    // clang-format on
    for (const auto& [json, type, text] : cases) {
        EXPECT_EQ(json.type(), type) << text;
        EXPECT_EQ(compact(json), text);
        EXPECT_EQ(json.error().has_value(), type == unknown) << text;
    }
}

TEST(JSONTest, DynamicValuesThatHoldJSONAreUnwrapped) {
    using Map = std::map<std::string, JSON>;
    using TransparentMap = std::map<std::string, JSON, std::less<>>;
    // clang-format off
    const std::pair<Any, std::string> cases[] = {
        {std::vector<JSON>{1, JSON(Date())}, "[1,null]"}, {std::vector<JSON>{}, "[]"},
        {Array{JSON(1), JSON("x")}, R"([1,"x"])"},        {Map{{"k", 1}}, R"({"k":1})"},
        {TransparentMap{{"k", 1}}, R"({"k":1})"},         {Map{}, "{}"},
        {std::unordered_map<std::string, JSON>{{"k", 1}}, R"({"k":1})"},
        {Dictionary{{"k", JSON(true)}}, R"({"k":true})"}, {Data::fromText("{}"), "{}"},
        {Array{JSON(1), 2}, "none"},  // not only JSON, so no array of JSON
        {JSON(1), "none"}};
    // clang-format on
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(compact(value), text);
        EXPECT_EQ(compact(JSON(Array{1, value})[1]), text);  // and so where they are read
        EXPECT_EQ(compact(JSON(Array{value, 1}).begin()->value), text);
        EXPECT_EQ(compact(JSON(Dictionary{{"n", 1}, {"k", value}}).dictionaryValue()["k"]), text);
    }
    EXPECT_EQ(JSON(Array{JSON(1), 2})[0].type(), Type::unknown);
}

TEST(JSONTest, DictionaryLiteralsUnwrapJSONAtAnyDepth) {
    const Dictionary mixed{{"j", JSON(5)}, {"n", 1}, {"a", Array{JSON(6), JSON("x")}}};
    const JSON json{{"d", mixed},
                    {"list", Array{mixed, Dictionary{{"d", mixed}}}},
                    {"other", Array{1, Dictionary{{"j", JSON(5)}}}}};
    EXPECT_EQ(compact(json["d"]), R"({"j":5,"n":1,"a":[6,"x"]})");
    EXPECT_EQ(compact(json["list"][1]["d"]["a"]), R"([6,"x"])");
    EXPECT_EQ(json["other"][1]["j"].type(), Type::number);  // as a dictionary of only JSON
    EXPECT_EQ(compact(json["other"]), "none");
}

TEST(JSONTest, SettingTheObjectDecidesTheTypeAnew) {
    const std::vector<JSON> list{7, 8};
    JSON json = JSON::parse("[1,2,3]");
    json.setObject(list);
    EXPECT_EQ(compact(json), "[1,2,3]");  // an array of JSON brings no elements along
    json.setObject("text");
    json.setObject(Date());
    EXPECT_EQ(json.error()->code(), ErrorUnsupportedType);
    JSON copy = json.detached();
    json.setObject(Array{JSON(7)});
    EXPECT_EQ(compact(json), "[1,2,3]");
    EXPECT_FALSE(json.error());
    json.setInt(1);
    json.setArrayObject(Array{4});
    json.setNull();
    json.setObject(list);
    EXPECT_EQ(compact(json), "[4]");
    json.setObject(Dictionary{{"k", 1}});
    json["k"] = 2;  // which changes nothing about what it was
    json.merge(JSON{{"k", 3}});
    json.setObject(list);
    EXPECT_EQ(compact(json), "[4]");
    json = 5;  // with nothing left of what it was
    json.setObject(list);
    EXPECT_EQ(compact(json), "[]");
    copy.setObject(list);
    EXPECT_EQ(compact(copy), "[1,2,3]");

    json.setObject(std::map<std::string, JSON>{{"k", 1}});  // counts as a dictionary of anything
    EXPECT_EQ(json["k"].type(), Type::unknown);
    EXPECT_EQ(compact(JSON(json.object())), R"({"k":1})");
    json.setObject(Data::fromText("1"));
    EXPECT_EQ(json.type(), Type::unknown);

    JSON missing = JSON()["x"];
    missing.setObject(Any());
    EXPECT_TRUE(missing.exists() && !missing.error());
}

TEST(JSONTest, WhatJSONCannotHoldIsUnknown) {
    const JSON json(Date{});
    EXPECT_EQ(json.error(), NSError("LitheJSONErrorDomain", 999,
                                    {{NSLocalizedDescriptionKey, "It is a unsupported type"}}));
    EXPECT_TRUE(json.object() == NSNull() && json.rawValue() == NSNull() && json.exists());
    EXPECT_FALSE(JSON::fromRawValue(Date()));
    EXPECT_EQ(JSON::fromRawValue("x")->string(), "x");
    EXPECT_TRUE(TypeFromRawValue(6) == Type::unknown && !TypeFromRawValue(7));
}

TEST(JSONTest, TextThatCannotBeReadIsNullAndTellsWhyIfAsked) {
    using enum JSONSerialization::ReadingOptions;
    std::optional<NSError> error = NSError("of before", 1);
    EXPECT_EQ(JSON(Data::fromText("1"), none, &error).error(), std::nullopt);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(JSON(Data::fromText("1"), allowFragments).int_(), 1);
    const std::string utf16("\xFF\xFE[\0]\0", 6);
    EXPECT_EQ(JSON(Data::fromText(utf16)).type(), Type::array);
    EXPECT_EQ(JSON::parse({"[\0]\0", 4}).type(), Type::array);  // UTF-8 it is as well
    for (const std::string& text : {std::string(), std::string("nul"), "[\"\xC0\"]" + utf16, utf16})
        EXPECT_TRUE(JSON::parse(text).null() && !JSON::parseJSON(text).error()) << text;
}

}  // namespace
}  // namespace InkoraKit
