#include "Generators.h"

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string_view>

namespace InkoraKit {
namespace {

/// The engine gives the same numbers everywhere; the library's distributions need not.
class Random {
public:
    std::uint64_t below(std::uint64_t limit) { return engine_() % limit; }
    std::uint64_t bits(unsigned count) { return engine_() >> (64 - count); }
    /// From -1 to 1.
    double fraction() { return static_cast<double>(bits(53)) / 4503599627370496.0 - 1; }

    template <class Choices>
    auto of(const Choices& choices) {
        return *(std::begin(choices) + below(std::size(choices)));
    }

private:
    std::mt19937_64 engine_{20140831};
};

/// Writes JSON text, indented or compact. Texts are written as they stand.
class Text {
public:
    explicit Text(bool isPretty) : isPretty_(isPretty) {}

    Text& open(char bracket) {
        begin();
        text_ += bracket;
        ++depth_;
        isFirst_ = true;
        return *this;
    }
    Text& close(char bracket) {
        --depth_;
        if (!isFirst_) breakLine();
        text_ += bracket;
        isFirst_ = false;
        return *this;
    }
    Text& key(std::string_view key) {
        begin();
        text_.append("\"").append(key).append(isPretty_ ? "\": " : "\":");
        isAfterKey_ = true;
        return *this;
    }
    Text& literal(std::string_view literal) {
        begin();
        text_ += literal;
        return *this;
    }
    Text& string(std::string_view string) {
        begin();
        text_.append("\"").append(string).append("\"");
        return *this;
    }
    Text& number(std::uint64_t number) { return literal(std::to_string(number)); }
    Text& member(std::string_view name, std::string_view value) { return key(name).string(value); }
    Text& member(std::string_view name, std::uint64_t value) { return key(name).number(value); }

    std::string take() { return std::move(text_); }

private:
    void begin() {
        if (!isAfterKey_) {
            if (!isFirst_) text_ += ',';
            if (depth_ > 0) breakLine();
        }
        isAfterKey_ = false;
        isFirst_ = false;
    }
    void breakLine() {
        if (isPretty_) text_.append("\n").append(2 * depth_, ' ');
    }

    bool isPretty_;
    bool isFirst_ = true;
    bool isAfterKey_ = false;
    std::size_t depth_ = 0;
    std::string text_;
};

constexpr std::string_view japanese[] = {
    "名前は前田です",     "今日の天気",    "第一印象は",     "ありがとう！", "😋✨✨",
    "おはようございます", "照れますがな😘", "イラスト大好き",
};

std::string sentence(Random& random, std::size_t words) {
    std::string text;
    for (std::size_t word = 0; word < words; ++word) {
        if (word) text += random.below(4) ? "" : "\\n";
        text += random.of(japanese);
    }
    return text;
}

void addUser(Text& text, Random& random) {
    const std::uint64_t id = random.below(3'000'000'000);
    const std::string digits = std::to_string(id);
    text.key("user").open('{').member("id", id).member("id_str", digits);
    text.member("name", sentence(random, 1)).member("screen_name", "pen_" + digits);
    text.member("location", random.of(japanese)).member("description", sentence(random, 6));
    text.key("url").literal("null").key("entities").open('{').key("description").open('{');
    text.key("urls").open('[').close(']').close('}').close('}');
    for (const auto* name : {"protected", "geo_enabled", "verified", "contributors_enabled",
                             "is_translator", "is_translation_enabled", "following"}) {
        text.key(name).literal("false");
    }
    for (const auto* name : {"followers_count", "friends_count", "listed_count", "statuses_count",
                             "favourites_count"}) {
        text.member(name, random.below(20'000));
    }
    text.member("created_at", "Tue Jun 17 01:18:34 +0000 2014").member("lang", "ja");
    for (const auto* name : {"profile_background_color", "profile_link_color", "profile_text_color",
                             "profile_sidebar_border_color", "profile_sidebar_fill_color"}) {
        text.member(name, "C0DEED");
    }
    for (const auto* name : {"profile_background_image_url", "profile_image_url",
                             "profile_background_image_url_https", "profile_image_url_https"}) {
        text.member(name, R"(http:\/\/images.example.org\/)" + digits + ".png");
    }
    for (const auto* name : {"utc_offset", "time_zone"}) text.key(name).literal("null");
    for (const auto* name : {"profile_use_background_image", "default_profile"})
        text.key(name).literal("true");
    text.close('}');
}

void addTweet(Text& text, Random& random, bool mayRepeatAnother) {
    const std::uint64_t id = 505'874'924'095'815'681 - random.below(1'000'000'000'000);
    text.open('{').key("metadata").open('{').member("result_type", "recent");
    text.member("iso_language_code", "ja").close('}');
    text.member("created_at", "Sun Aug 31 00:29:15 +0000 2014").member("id", id);
    text.member("id_str", std::to_string(id)).member("text", sentence(random, 7));
    text.member("source", R"(<a href=\"http:\/\/example.org\" rel=\"nofollow\">A phone<\/a>)");
    text.key("truncated").literal("false");
    for (const auto* name : {"in_reply_to_status_id", "in_reply_to_user_id", "geo", "coordinates",
                             "in_reply_to_screen_name", "place", "contributors"}) {
        text.key(name).literal("null");
    }
    addUser(text, random);
    if (mayRepeatAnother && random.below(4)) {
        text.key("retweeted_status");
        addTweet(text, random, false);
    }
    text.member("retweet_count", random.below(100)).member("favorite_count", random.below(100));
    text.key("entities").open('{').key("hashtags").open('[').close(']');
    text.key("user_mentions").open('[').open('{').member("screen_name", "pen");
    text.key("indices").open('[').number(3).number(random.below(120)).close(']').close('}');
    text.close(']').close('}').key("favorited").literal("false").member("lang", "ja").close('}');
}

/// A dictionary of so many names under ids with nine digits.
void addNames(Text& text, std::string_view key, std::uint64_t firstId, std::size_t count) {
    text.key(key).open('{');
    for (std::size_t i = 0; i < count; ++i)
        text.member(std::to_string(firstId + i), i % 2 ? "Arrière-scène central" : "1er balcon");
    text.close('}');
}

void addEvents(Text& text, Random& random) {
    text.key("events").open('{');
    for (std::uint64_t event = 0; event < 184; ++event) {
        // The last of them are much newer, which the look-up of a late key counts on.
        const std::uint64_t id = 4 * event + (event < 148 ? 138'586'341 : 339'420'209);
        text.key(std::to_string(id)).open('{').key("description").literal("null");
        text.member("id", id).key("logo").literal("null").member("name", "Orchestre du Köln");
        for (const auto* name : {"subTopicIds", "topicIds"}) {
            text.key(name).open('[');
            for (int i = 0; i < 3; ++i) text.number(337'184'260 + random.below(40));
            text.close(']');
        }
        text.key("subjectCode").literal("null").key("subtitle").literal("null").close('}');
    }
    text.close('}');
}

void addPerformances(Text& text, Random& random) {
    text.key("performances").open('[');
    for (int performance = 0; performance < 243; ++performance) {
        text.open('{').member("eventId", 138'586'341 + 4 * random.below(184));
        text.member("id", 339'887'544 + random.below(1'000'000));
        text.key("logo").literal("null").key("prices").open('[');
        for (int price = 0; price < 4; ++price) {
            text.open('{').member("amount", 500 * random.below(200));
            text.member("audienceSubCategoryId", 337'100'890);
            text.member("seatCategoryId", 338'937'290 + random.below(60)).close('}');
        }
        text.close(']').key("seatCategories").open('[');
        for (int category = 0; category < 4; ++category) {
            text.open('{').key("areas").open('[');
            for (int area = 0; area < 12; ++area) {
                text.open('{').member("areaId", 205'705'993 + random.below(17));
                text.key("blockIds").open('[').close(']').close('}');
            }
            text.close(']').member("seatCategoryId", 338'937'290 + random.below(60)).close('}');
        }
        text.close(']').key("seatMapImage").literal("null");
        text.member("start", 1'372'701'600'000).member("venueCode", "HALL").close('}');
    }
    text.close(']');
}

}  // namespace

std::string generateTweets() {
    Random random;
    Text text(true);
    text.open('{').key("statuses").open('[');
    for (int tweet = 0; tweet < 100; ++tweet) addTweet(text, random, true);
    text.close(']').key("search_metadata").open('{').key("completed_in").literal("0.087");
    text.member("query", "%E4%B8%80").member("count", 100).member("since_id", 0);
    return text.close('}').close('}').take();
}

std::string generateCoordinates() {
    Random random;
    Text text(false);
    text.open('{').member("type", "FeatureCollection").key("features").open('[').open('{');
    text.member("type", "Feature").key("properties").open('{').member("name", "Canada").close('}');
    text.key("geometry").open('{').member("type", "Polygon").key("coordinates").open('[');
    for (int ring = 0; ring < 480; ++ring) {
        text.open('[');
        for (int point = 0; point < 115; ++point) {
            char pair[64];
            std::snprintf(pair, sizeof pair, "[%.15f,%.15f]", -95 + 45 * random.fraction(),
                          62 + 20 * random.fraction());
            text.literal(pair);
        }
        text.close(']');
    }
    return text.close(']').close('}').close('}').close(']').close('}').take();
}

std::string generateCatalog() {
    Random random;
    Text text(true);
    text.open('{');
    addNames(text, "areaNames", 205'705'993, 17);
    text.key("blockNames").open('{').close('}');
    addEvents(text, random);
    addPerformances(text, random);
    addNames(text, "seatCategoryNames", 338'937'235, 64);
    addNames(text, "subTopicNames", 337'184'262, 19);
    text.key("venueNames").open('{').member("HALL", "Salle Pleyel").close('}');
    return text.close('}').take();
}

std::string generatePenEvent() {
    return R"({"type":"pen","phase":"moved","id":4711,"t":1718031234.56789,)"
           R"("pos":{"x":512.25,"y":384.75},"tilt":[0.5235987755982988,-0.7853981633974483],)"
           R"("pressure":0.4375,"buttons":3,"eraser":false,"tool":"fountain pen",)"
           R"("colour":{"r":18,"g":52,"b":86,"a":1},"layer":null,)"
           R"("tags":["ink","draft","page 12"],"note":"stroke \u00e9t\u00e9"})";
}

std::string generateNested() {
    Text text(false);
    text.open('[');
    for (std::uint64_t chain = 0; chain < 60; ++chain) {
        for (std::size_t pair = 0; pair < nestedPairs; ++pair)
            text.open('{').key(nestedKeys[pair % std::size(nestedKeys)]).open('[');
        text.number(chain);
        for (std::size_t pair = 0; pair < nestedPairs; ++pair) text.close(']').close('}');
    }
    return text.close(']').take();
}

std::string generateIntegers() {
    Random random;
    Text text(false);
    text.open('[');
    for (int i = 0; i < 100'000; ++i) {
        constexpr unsigned widths[] = {6, 6, 6, 13, 13, 31, 31, 62, 64};
        const unsigned width = random.of(widths);
        const std::uint64_t number = random.bits(width);
        const bool isNegative = width > 6 && width < 64 && number > 0 && random.below(2);
        if (isNegative) {
            text.literal(std::to_string(-static_cast<std::int64_t>(number)));
        } else {
            text.number(number);
        }
    }
    return text.close(']').take();
}

std::string generateStrings() {
    constexpr std::string_view parts[] = {
        R"(tab\there )",
        R"(quote \"x\" )",
        R"(line\nbreak )",
        R"(back\\slash )",
        R"(\u20acuro )",
        R"(\u00e9t\u00e9 )",
        R"(emoji \ud83d\ude00 )",
        R"(ctrl\u0001 )",
        "naïve été €uro ",
        "日本語 ",
        "emoji 😀 ",
        "path/to/file ",
        "stroke pressure ",
        "canvas ",
        "lorem ipsum dolor sit amet ",
        "plain text without anything special ",
    };
    Random random;
    Text text(false);
    text.open('[');
    for (int i = 0; i < 6'000; ++i) {
        std::string string;
        for (std::uint64_t part = random.below(15); part > 0; --part) string += random.of(parts);
        text.string(string);
    }
    return text.close(']').take();
}

std::string generateSettings() {
    constexpr std::string_view keys[] = {"device", "pairing",  "colours", "history",
                                         "canvas", "brush",    "layers",  "pressure",
                                         "export", "shortcut", "network", "appearance"};
    Random random;
    Text text(false);
    text.open('{');
    for (const auto outer : keys) {
        text.key(outer).open('{');
        for (const auto middle : keys) {
            text.key(middle).open('{');
            for (const auto inner : keys) text.member(inner, random.below(1'000));
            text.close('}');
        }
        text.close('}');
    }
    return text.close('}').take();
}

std::string generateGrid() {
    Random random;
    Text text(false);
    text.open('[');
    for (int plane = 0; plane < 20; ++plane) {
        text.open('[');
        for (int row = 0; row < 20; ++row) {
            text.open('[');
            for (int cell = 0; cell < 20; ++cell) text.number(random.below(1'000));
            text.close(']');
        }
        text.close(']');
    }
    return text.close(']').take();
}

}  // namespace InkoraKit
