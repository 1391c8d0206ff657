#include <InkoraKit/JSON.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <ranges>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace InkoraKit {
namespace {

std::string compact(const JSON& json) {
    using enum JSONSerialization::WritingOptions;
    return json.rawString(StringEncoding::utf8, none).value_or("none");
}

TEST(JSONAccessTest, PlainFormsFitAndValueFormsConvert) {
    // clang-format off
    const struct { JSON json; bool boolean; std::string string; std::string number; } cases[] = {
        {true, true, "true", "1"},        {false, false, "false", "0"}, {2.5, true, "2.5", "2.5"},
        {0, false, "0", "0"},             {"TrUe", true, "TrUe", "0"},  {"t", true, "t", "0"},
        {"Y", true, "Y", "0"},            {"Yes", false, "Yes", "0"},   {"", false, "", "0"},
        {" true", false, " true", "0"},   {"1", false, "1", "1"},       {"x1", false, "x1", "0"},
        {"1e3", false, "1e3", "1000"},    {"12a", false, "12a", "12"},  {JSON(), false, "", "0"},
        {JSON::arrayOf(1), false, "", "0"}, {JSON{{"a", 1}}, false, "", "0"}};
    // clang-format on
    for (const auto& [json, boolean, string, number] : cases) {
        SCOPED_TRACE(json.description());
        const bool hasNumber = json.type() == Type::number || json.type() == Type::bool_;
        EXPECT_EQ(json.boolValue(), boolean);
        EXPECT_EQ(json.bool_().has_value(), json.type() == Type::bool_);
        EXPECT_EQ(json.stringValue(), string);
        EXPECT_EQ(json.string().has_value(), json.type() == Type::string);
        EXPECT_EQ(json.numberValue().stringValue(), number);
        EXPECT_FALSE(json.numberValue().isBool());
        EXPECT_EQ(json.number().has_value(), hasNumber);
        EXPECT_EQ(json.intValue(), json.numberValue().integerValue());
        EXPECT_EQ(json.null().has_value(), json.type() == Type::null);
        EXPECT_EQ(json.arrayValue().size() + json.dictionaryValue().size(), json.count());
        EXPECT_EQ(json.array().has_value() && json.arrayObject(), json.type() == Type::array);
        EXPECT_EQ(json.dictionary().has_value() && json.dictionaryObject(),
                  json.type() == Type::dictionary);
    }
}

TEST(JSONAccessTest, NumbersAreReadAndKeptInEveryWidth) {
    const JSON json = UINT64_MAX - 1;  // of which every width keeps the low bits
    EXPECT_EQ(json.uInt(), UINT64_MAX - 1);
    EXPECT_EQ(json.uInt64Value(), UINT64_MAX - 1);
    EXPECT_TRUE(json.int_() == -2 && json.int8() == -2 && json.int16() == -2 &&
                json.int32() == -2 && json.int64() == -2);
    EXPECT_TRUE(json.uInt8Value() == 254 && json.uInt16Value() == 65534 &&
                json.uInt32Value() == 4294967294);
    EXPECT_TRUE(JSON(0.1f).doubleValue() == 0.1f && JSON(1e300).floatValue() > 1e38f);

    const auto kept = []<class V>(void (JSON::*set)(V)&, std::type_identity_t<V> value) {
        JSON result = JSON()["missing"];
        (result.*set)(value);
        EXPECT_FALSE(result.error());
        return std::string(result.numberValue().objCType()) + compact(result);
    };
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {kept(&JSON::setInt8, -1), "q-1"},  // widened
        {kept(&JSON::setUInt8Value, 255), "s255"}, {kept(&JSON::setInt16, -1), "s-1"},
        {kept(&JSON::setUInt16, 1), "i1"},         {kept(&JSON::setUInt32, 1), "q1"},
        {kept(&JSON::setUIntValue, UINT64_MAX), "Q18446744073709551615"},
        {kept(&JSON::setFloat, 1.5f), "f1.5"},     {kept(&JSON::setBool, true), "qtrue"},
        {kept(&JSON::setNumber, NSNumber(true)), "qtrue"},
        {kept(&JSON::setString, std::nullopt), "dnull"},
        {kept(&JSON::setUrl, URL::fromString("a%20b")), "da%20b"}};
    // clang-format on
    for (const auto& [found, wanted] : cases) EXPECT_EQ(found, wanted);
}

TEST(JSONAccessTest, UrlsAreEscapedUnlessTheyAreAlready) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"é b", "%C3%A9%20b"}, {"a%20b#c", "a%20b#c"}, {"a%zz", "a%25zz"}, {"", nullptr},
        {"a%20b c", nullptr}};
    // clang-format on
    for (const auto& [text, url] : cases) {
        const auto found = JSON(text).url();
        EXPECT_EQ(found ? found->absoluteString() : "", url ? url : "");
    }
    EXPECT_FALSE(JSON(5).url());
}

TEST(JSONAccessTest, TheFirstFailedStepOfAPathIsReported) {
    const JSON list = JSON::arrayOf(1, 2, 3);
    const JSON members = JSON{{"a", 1}, {"n", JSON()}};
    const JSON unknown(NSError("", 0));
    // clang-format off
    const struct { JSON json; std::int64_t code; std::string text; } cases[] = {
        {list[3], 900, "Array[3] is out of bounds"},
        {list[-1], 900, "Array[-1] is out of bounds"},
        {list[UINT64_MAX], 900, "Array[9223372036854775807] is out of bounds"},
        {JSON(Array{unknown, 1})[2], 900, "Array[2] is out of bounds"},
        {list["k"], 901, "Dictionary[\"k\"] failure, It is not an dictionary"},
        {JSON("x")[0], 901, "Array[0] failure, It is not an array"},
        {members[0], 901, "Array[0] failure, It is not an array"},
        {members["b"], 500, "Dictionary[\"b\"] does not exist"},
        {members["b"]["c"][2], 500, "Dictionary[\"b\"] does not exist"},
        {members[{"b", "c", 2}], 500, "Dictionary[\"b\"] does not exist"},
        {members[{"a", "c", 2}], 901, "Dictionary[\"c\"] failure, It is not an dictionary"},
        {members["n"][0][0], 901, "Array[0] failure, It is not an array"},
        {unknown["k"][0], 999, "It is a unsupported type"},
        {unknown[{0, "k"}], 999, "It is a unsupported type"}};
    // clang-format on
    for (const auto& [json, code, text] : cases) {
        ASSERT_TRUE(json.error()) << text;
        EXPECT_EQ(*json.error(), NSError(ErrorDomain, code, {{NSLocalizedDescriptionKey, text}}));
        EXPECT_EQ(json.type(), Type::null);
        EXPECT_EQ(json.exists(), code == 999);
    }
    EXPECT_TRUE(members["n"].exists() && !members["n"].error());
    EXPECT_EQ(compact(list[JSONPath{}]), "[1,2,3]");
    EXPECT_EQ(members["b"][JSONPath{}].error()->code(), 500);
}

TEST(JSONAccessTest, WritesDoWhatTheTypesAllowAndNothingElse) {
    JSON json = JSON::parse(R"({"a":[0,1],"b":{}})");
    json[{"a", 0}] = JSON("x")[0];  // whose error is not written
    json["a"][1] = JSON(NSError("", 0));
    json["b"] = JSON{{"k", 2}};
    json[JSONPath{}] = 5;
    json["a"][-1][0] = 5;  // a negative step before the last one leads nowhere
    EXPECT_EQ(compact(json), R"({"a":[null,null],"b":{"k":2}})");
    EXPECT_DEATH_IF_SUPPORTED(json["a"][-1] = 5, "Fatal error: Index out of range");
}

TEST(JSONAccessTest, WhatIsWrittenOnTheWayIsConverted) {
    JSON holder(Array{Data::fromText(R"({"k":[1]})"), Any(std::vector<JSON>{1, 2})});
    holder[0]["k"][0] = holder[1][1];
    holder[{1, 0}] = "x";
    EXPECT_EQ(compact(holder), R"([{"k":[2]},["x",2]])");
    JSON outer = JSON::parse("[[0]]");
    outer[0][0] = Array{Data::fromText("[3]"), 4};
    EXPECT_EQ(compact(*outer.find(0, 0, 0)), "[3]");
    EXPECT_EQ(compact(JSON::arrayOf(outer[0])[0][0][0]), "[3]");
    EXPECT_TRUE(outer.exists() && !outer.error());
}

TEST(JSONAccessTest, APlaceKeptIsAValueOfItsOwn) {
    JSON json = JSON::parse(R"({"pen":{"name":"desk"},"list":[1]})");
    auto pen = json["pen"];
    pen["name"] = "other";
    pen["new"] = 1;
    EXPECT_EQ(compact(pen), R"({"name":"other","new":1})");
    pen = json["list"];
    pen[0] = 2;
    const JSON moved = std::move(pen);
    EXPECT_EQ(compact(moved), "[2]");
    EXPECT_EQ(compact(json), R"({"pen":{"name":"desk"},"list":[1]})");
    json["pen"] = moved;
    json["list"].setObject(std::vector<JSON>{9});  // as for any value, keeps the elements
    EXPECT_EQ(compact(json), R"({"pen":[2],"list":[1]})");
    EXPECT_EQ(JSON(json)["list"][0].intValue() + std::as_const(json)["pen"][0].intValue(), 3);

    std::pair pair(json["pen"], 1);
    std::thread([copy = pair.first]() mutable { std::move(copy) = 7; }).join();
    std::move(pair.first) = 8;
    EXPECT_EQ(compact(pair.first), "8");
    EXPECT_EQ(compact(Dictionary{{"k", json["list"]}}), R"({"k":[1]})");
    Array array;
    array.append(json["pen"]);
    EXPECT_EQ(*array[0].as<JSON>(), moved);
    EXPECT_EQ(compact(json), R"({"pen":[2],"list":[1]})");
}

TEST(JSONAccessTest, APlaceMayOutliveTheExpressionButNotItsDocument) {
    JSON json = JSON::parse(R"({"a":{"a long, long key":{"c":{"d":{"e":[0]}}}}})");
    const auto at = [](JSON& outer, const std::string& key) {
        return outer[std::string("a")][key]["c"]["d"]["e"][0];
    };
    at(json, "a long, long key") = 5;
    auto&& place = json[{"a", "a long, long key"}]["new"];
    std::move(place) = 6;
    EXPECT_EQ(compact(json), R"({"a":{"a long, long key":{"c":{"d":{"e":[5]}},"new":6}}})");
    auto&& outer = json["a"];
    auto&& inner = std::move(outer)["new"];
    auto&& other = std::move(outer)["other"];
    outer = 7;
    std::move(inner) = 8;
    std::move(other) = 9;
    EXPECT_EQ(compact(json["a"]["new"]) + compact(json["a"]["other"]) + compact(outer), "897");
}

TEST(JSONAccessTest, ViewsShowWhatSubscriptsGive) {
    const Any list = Array{1, Data::fromText(R"({"k":[true]})"), Array{JSON(2), JSON("x")}, Any(),
                           Array{3, NSError("", 0)}};
    for (const JSON& json : {JSON(list), JSON(Array{1, list, 2})[1], JSON(std::vector<Any>(5))}) {
        const JSONElements elements = json.elements();
        const std::vector<JSON> copies = json.arrayValue();
        ASSERT_TRUE(std::equal(
            elements.begin(), elements.end(), copies.begin(), copies.end(),
            [](const JSON& one, const JSON& other) { return one.type() == other.type(); }));
        for (std::ptrdiff_t i = 0; i < 5; ++i) {
            EXPECT_EQ(compact(elements.begin()[i]), compact(json[i]));
            EXPECT_TRUE(json.find(i) == &std::next(json.begin(), i)->value);
        }
        for (const auto& [key, value] : elements[1].members())
            EXPECT_EQ(compact(*json.find(1, key, 0)), compact(value[0]));
        EXPECT_FALSE(json.find(5) || json.find("k") || json.find(1, "x") || json.find(3, 0));
        EXPECT_TRUE(json.find() == &json && json.members().empty());
    }
}

TEST(JSONAccessTest, CollectionsServeClassicAlgorithms) {
    const JSON json = JSON::parse(R"({"b":2,"a":[3,1,2]})");
    const std::vector<JSONMember> members(json.begin(), json.end());
    EXPECT_EQ(members[1].key + compact(members[1].value), "a[3,1,2]");
    const JSON& list = *json.find("a");
    static_assert(std::ranges::view<JSONElements> && std::ranges::borrowed_range<JSONElements>);
    const JSONElements elements = list.elements();
    EXPECT_EQ(*std::max_element(elements.begin(), elements.end()), 3);
    std::vector<JSON> sorted(elements.begin(), elements.end());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(compact(sorted), "[1,2,3]");
}

TEST(JSONAccessTest, WhatIsMovedFromIsNull) {
    JSON from = JSON::arrayOf(1);
    JSON to = "x";
    to = std::move(from);
    EXPECT_TRUE(from.null() && compact(to) == "[1]");  // NOLINT(bugprone-use-after-move)
    JSON& same = to;
    to = std::move(same);
    EXPECT_EQ(compact(to), "[1]");
}

TEST(JSONAccessTest, IterationShowsTheContentsAtItsStart) {
    std::ostringstream shown;
    JSON json = JSON::parse(R"(["x",{"a long, long key":[null]},-1])");
    std::vector<JSONMember> kept;
    for (auto member = json.begin(); member != json.end(); member++) {
        json = json[member->key == "0" ? 1 : 0];
        shown << member->key << '=' << compact(member->value) << ' ';
        kept.push_back(*member);
    }
    for (const auto& [key, value] : kept[1].value) shown << key << '=' << compact(value);
    EXPECT_EQ(shown.str(), "0=x 1={\"a long, long key\":[null]} 2=-1 a long, long key=[null]");
    EXPECT_EQ(kept[1].key, "1");
    for (const JSON& none : {JSON(5), JSON(), JSON("x"), JSON(NSError("", 0)), JSON::arrayOf()})
        EXPECT_TRUE(none.begin() == none.end() && none.startIndex() == none.endIndex());
}

TEST(JSONAccessTest, PositionsLeadThroughTheContents) {
    using Position = JSON::Index;
    const std::pair<std::string, JSON> nothing;
    for (const char* text : {R"(["x","y"])", R"({"0":"x","1":"y"})"}) {
        const JSON json = JSON::parse(text);
        std::string shown;
        for (auto i = json.startIndex(); i < json.endIndex(); i = json.indexAfter(i))
            shown += json[i].first + json[i].second.stringValue();
        EXPECT_EQ(shown, "0x1y");
        EXPECT_EQ(json[json.endIndex()].first, "");
        const auto other =
            json.type() == Type::array ? Position::dictionary(0) : Position::array(0);
        EXPECT_EQ(json[other], nothing);  // a position in another kind of container
    }
    EXPECT_EQ(JSON(5).indexAfter(JSON(5).startIndex()), Position::null());
    EXPECT_EQ(JSON(5)[Position::null()], nothing);
    EXPECT_FALSE(Position::null() < Position::null() ||
                 Position::array(0) < Position::dictionary(1));
}

}  // namespace
}  // namespace InkoraKit
