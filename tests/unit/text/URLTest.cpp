#include <InkoraKit/platform/URL.h>

#include "platform/foundation/text/PercentEncoding.h"

#include <gtest/gtest.h>

namespace InkoraKit {
namespace {

constexpr std::string_view illegal = "\"<>\\^`{|}%";

TEST(URLTest, KeepsALegalTextByteForByteAndRefusesAnyOther) {
    for (const std::string text :
         {"HTTP://Example.com", "a%2fB%C3", "a%20b#c", "#", "://", "]%41["})
        EXPECT_EQ(URL::fromString(text).value().absoluteString(), text);
    for (const std::string text : {"", "%", "a%2", "a%zz", "a%2g", "%%20", "a#b#c", "##"})
        EXPECT_FALSE(URL::fromString(text)) << text;
    for (int byte = 0; byte < 0x100; ++byte) {
        const std::string text{'a', static_cast<char>(byte)};
        const bool isLegal = byte > ' ' && byte <= '~' && illegal.find(text[1]) == illegal.npos;
        EXPECT_EQ(URL::fromString(text).has_value(), isLegal) << byte;
    }
    EXPECT_EQ(URL::fromString("a")->description(), "a");
    EXPECT_NE(URL::fromString("a"), URL::fromString("A"));
    EXPECT_EQ(std::hash<URL>{}(*URL::fromString("a")), std::hash<URL>{}(*URL::fromString("a")));
}

TEST(URLTest, EncodesWhatAQueryMayNotHold) {
    const std::string kept = "azAZ09!$&'()*+,-./:;=?@_~";
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"", ""}, {kept, kept}, {"é😀", "%C3%A9%F0%9F%98%80"}, {"#[]", "%23%5B%5D"},
        {std::string("\0\x1F \x7F", 4), "%00%1F%20%7F"},
        {std::string(illegal), "%22%3C%3E%5C%5E%60%7B%7C%7D%25"}};
    // clang-format on
    for (const auto& [text, encoded] : cases)
        EXPECT_EQ(addingPercentEncodingForQuery(text), encoded);
    EXPECT_FALSE(addingPercentEncodingForQuery("a\xED\xA0\x80"));
}

TEST(URLTest, FindsAnEscapeAnywhere) {
    for (const std::string_view text : {"%20", "%aF", "%%41", "%2 %20", "a%zz%00"})
        EXPECT_TRUE(hasPercentEscape(text)) << text;
    for (const std::string_view text : {"", "%", "20", "100%", "%2", "a%2g", "%g2", "% 20", "%é"})
        EXPECT_FALSE(hasPercentEscape(text)) << text;
    EXPECT_FALSE(hasPercentEscape(std::string_view("%20").substr(0, 2)));
}

}  // namespace
}  // namespace InkoraKit
