#include <InkoraKit/platform/URL.h>

#include <gtest/gtest.h>

#include "platform/foundation/text/PercentEncoding.h"

namespace InkoraKit {
namespace {

TEST(URLTest, KeepsALegalTextByteForByte) {
    for (const std::string text :
         {"HTTP://Example.com", "a%20b", "a%2fB%C3", "a%20b#c", "#", "1:2", "://", "?q=1", "[::1]",
          "azAZ09!$&'()*+,-./:;=?@_~[]", "]%41["}) {
        const auto url = URL::fromString(text);
        ASSERT_TRUE(url) << text;
        EXPECT_EQ(url->absoluteString(), text);
        EXPECT_EQ(url->description(), text);
    }
    EXPECT_EQ(URL::fromString("a"), URL::fromString("a"));
    EXPECT_NE(URL::fromString("a"), URL::fromString("A"));
    EXPECT_EQ(std::hash<URL>{}(*URL::fromString("a")), std::hash<URL>{}(*URL::fromString("a")));
}

TEST(URLTest, RefusesWhatNoURLMayHold) {
    for (const std::string text : {"", "%", "100%", "a%2", "a%zz", "a%2g", "%%20", "a#b#c", "##",
                                   "a%20b c", "é%20", "a%20b#c#d", "😀"})
        EXPECT_FALSE(URL::fromString(text)) << text;
    for (int byte = 0; byte < 0x100; ++byte) {
        const char character = static_cast<char>(byte);
        const bool isIllegal =
            byte <= ' ' || byte > '~' ||
            std::string_view("\"<>\\^`{|}%").find(character) != std::string::npos;
        EXPECT_EQ(URL::fromString(std::string("a") + character).has_value(), !isIllegal) << byte;
    }
}

TEST(URLTest, EncodesWhatAQueryMayNotHold) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"a b", "a%20b"},
        {"100%", "100%25"},
        {"a%2", "a%252"},
        {"a%zz", "a%25zz"},
        {"http://x/é", "http://x/%C3%A9"},
        {"q?x=1&y=2", "q?x=1&y=2"},
        {"a+b", "a+b"},
        {"x#y", "x%23y"},
        {"http://[::1]/", "http://%5B::1%5D/"},
        {"😀", "%F0%9F%98%80"},
        {std::string("\0\x1F\x7F", 3), "%00%1F%7F"},
        {"\"<>\\^`{|}", "%22%3C%3E%5C%5E%60%7B%7C%7D"},
        {"azAZ09!$&'()*+,-./:;=?@_~", "azAZ09!$&'()*+,-./:;=?@_~"},
    };
    for (const auto& [text, encoded] : cases) {
        EXPECT_EQ(addingPercentEncodingForQuery(text), encoded);
        EXPECT_EQ(URL::fromString(encoded).has_value(), !encoded.empty()) << encoded;
    }
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
