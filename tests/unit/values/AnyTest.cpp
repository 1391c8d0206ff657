#include <InkoraKit/JSON.h>
#include <InkoraKit/platform/Any.h>
#include <InkoraKit/platform/JSONSerialization.h>
#include <InkoraKit/platform/NSError.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

namespace InkoraKit {
namespace {

constexpr const char* document =
    R"({"pens":[{"name":"a name of more than fourteen","colours":[[255,0],[]]},[1.5,true,null]],)"
    R"("number":123456789012345678901234567890,"text":"short"})";

Any read(std::string_view text) {
    return JSONSerialization::jsonObject(text);
}

/// The same in memory of its own, and not that of a text.
Any built(const Any& value) {
    return JSON(value).detached().object();
}

TEST(AnyTest, ACopyNeverChangesWithItsOriginal) {
    for (const Any& original : {read(document), built(read(document))}) {
        Dictionary members = *original.as<Dictionary>();
        Array pens = *members.find("pens")->second.as<Array>();
        pens.set(0, pens[1]);
        pens.append(2);
        members.set("pens", pens);
        members.set("text", members);
        members.erase("number");
        pens.append(pens);
        EXPECT_EQ(original.description(), document);
        EXPECT_EQ(Any(*members.find("pens")->second.as<Array>()).description(),
                  "[[1.5,true,null],[1.5,true,null],2]");
        EXPECT_TRUE(members.size() == 2 && pens.size() == 4);
    }
}

TEST(AnyTest, AKeyIsFoundHoweverManyMembersThereAre) {
    const auto keyOf = [](std::size_t i) { return std::string(i % 25, 'o') + std::to_string(i); };
    const auto expectMembers = [&](const Dictionary& members, std::size_t count) {
        ASSERT_EQ(members.size(), count);
        for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(members.find(keyOf(i))->second, Any(i));
        ASSERT_FALSE(members.contains(keyOf(count)) || members.contains(""));
    };
    Dictionary members;
    for (std::size_t i = 0; i < 140; ++i) {
        const Dictionary before = members;
        Dictionary reserved = before;
        reserved.reserve(i % 3 * 50);
        members.set(keyOf(i), i);
        members.set(keyOf(i / 2), i / 2);
        reserved.set("another", 1);
        expectMembers(members, i + 1);
        expectMembers(before, i);
        ASSERT_TRUE(reserved.contains("another") && !reserved.contains(keyOf(i)));
    }
    for (std::size_t i = 140; i-- > 0;) {
        ASSERT_TRUE(members.erase(keyOf(i)));
        expectMembers(members, i);
    }
    EXPECT_TRUE(Array().size() + Dictionary().size() == 0 && Array().begin() == Array().end());
    // The size of these is one more than addresses can count.
    EXPECT_THROW(members.reserve(std::numeric_limits<std::size_t>::max() / 32 + 1),
                 std::length_error);
}

TEST(AnyTest, EqualValuesHaveEqualHashes) {
    const Any text = "a text of more than fourteen";
    const Any thing = NSError("domain", 1);
    // clang-format off
    const struct { Any left; bool areEqual; Any right; } cases[] = {
        {Array{1, "a", NSNull()}, true, Array{1.0, "a", NSNull()}}, {Array{true}, true, Array{1}},
        {Array{1}, false, Array{"1"}}, {read(R"({"a":1,"b":2})"), true, Dictionary{{"b", 2.0}, {"a", true}}},
        {read(document), true, built(read(document))}, {read(document), false, Dictionary()},
        {Dictionary{{"a", 1}}, false, Dictionary{{"b", 1}}}, {Array{1}, false, Array{1, 1}},
        {Array{}, false, Dictionary{}}, {Array{Array{1}}, false, Array{Array{2}}},
        {1, true, NSDecimalNumber("1.0")}, {UINT64_MAX, true, read("[18446744073709551615]").as<Array>()->begin()[0]},
        {0.0, true, -0.0}, {std::nan(""), true, std::nan("")}, {false, true, 0}, {INT64_MAX, false, 9223372036854775807.0},
        {text, true, read(R"(["a text of more than fourteen"])").as<Array>()->begin()[0]},
        {text, false, "a text of more than fifteen!"}, {std::string("a\0b", 3), false, "a"}, {"", false, Any()},
        {Any(), true, std::nullopt}, {Any(), false, NSNull()}, {NSNull(), false, 0},
        {thing, true, NSError("domain", 1)}, {thing, false, NSError("domain", 2)}, {thing, false, "domain"},
        {"\xC3", true, std::string("\xC3")}, {"\xC3", false, "\xC4"}};
    // clang-format on
    for (const auto& [left, areEqual, right] : cases) {
        EXPECT_EQ(left == right, areEqual) << left.description() << right.description();
        EXPECT_EQ(right == left, areEqual);
        EXPECT_TRUE(left == Any(left));
        EXPECT_TRUE(!areEqual || left.hash() == right.hash()) << left.description();
    }
}

TEST(AnyTest, AnObjectLivesAsLongAsOneWhoKnowsIt) {
    struct Plain {
        std::shared_ptr<int> held;
    };
    const auto held = std::make_shared<int>(7);
    {
        Any object = Plain{held};
        Any copy = object;
        Dictionary dictionary{{"a", Array{copy}}};
        EXPECT_EQ(held.use_count(), 2);
        object = "something else";
        copy = Any(copy.as<Plain>()->held);
        ASSERT_TRUE(copy.as<std::shared_ptr<int>>() && !copy.as<Plain>() && !copy.as<NSError>());
        EXPECT_EQ(held.use_count(), 3);
        const Any inside = (*dictionary.find("a")->second.as<Array>())[0];
        dictionary.erase("a");
        EXPECT_EQ(*inside.as<Plain>()->held, 7);
        EXPECT_TRUE(inside == Any(inside) && !(inside == Any(Plain{held})));
    }
    EXPECT_EQ(held.use_count(), 1);

    Any deep = Plain{held};
    for (int i = 0; i < 200'000; ++i)
        deep = i % 2 != 0 ? Any(Array{deep}) : Dictionary{{"a", deep}};
    EXPECT_TRUE(deep == Any(deep) && held.use_count() == 2);
}

TEST(AnyTest, TextThatIsNotUtf8IsKeptButIsNoText) {
    for (const std::string text : {"\xC3", "a longer text that ends too early \xE2\x82"}) {
        const Any value = text;
        EXPECT_TRUE(value.kind() == Any::Kind::object && value.isObject());
        EXPECT_EQ(value.as<std::string>(), text);
        EXPECT_EQ(value.description(), text);
        Dictionary dictionary{{text, 1}};
        dictionary.set(text, 2);
        EXPECT_TRUE(dictionary.size() == 1 && dictionary.contains(text));
        EXPECT_EQ(Any(dictionary).description() + Any(Array{text}).description(), "{…}[…]");
    }
    EXPECT_EQ(Any(std::string("a\0b", 3)).kind(), Any::Kind::text);
}

TEST(AnyTest, ACopyOfABorrowedValueOutlivesTheLender) {
    Any copy;
    {
        const Any lender = Array{"a text of more than fourteen"};
        Any borrowed = Dictionary();
        borrowed.borrow(lender);
        borrowed.borrow((*lender.as<Array>())[0]);
        copy = borrowed;
    }
    EXPECT_EQ(copy.as<std::string_view>(), "a text of more than fourteen");
}

}  // namespace
}  // namespace InkoraKit
