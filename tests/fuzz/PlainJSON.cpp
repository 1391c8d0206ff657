#include "PlainJSON.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace InkoraKit {
namespace {

struct Refused {};

void accept(bool condition) {
    if (!condition) throw Refused();
}

void appendUtf8(std::string& text, char32_t character) {
    const auto continued = [&](int shift) {
        text += static_cast<char>(0x80 | (character >> shift & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        continued(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        continued(6);
        continued(0);
    } else {
        text += static_cast<char>(0xF0 | character >> 18);
        continued(12);
        continued(6);
        continued(0);
    }
}

class PlainReader {
public:
    explicit PlainReader(std::u32string text) : text_(std::move(text)) {}

    PlainJSON read() {
        PlainJSON result = value(0);
        skipBlanks();
        accept(place_ == text_.size());
        return result;
    }

private:
    char32_t peek() const { return place_ < text_.size() ? text_[place_] : 0; }
    bool take(char32_t wanted) {
        const bool isThere = peek() == wanted;
        if (isThere) ++place_;
        return isThere;
    }
    void skipBlanks() {
        while (take(' ') || take('\t') || take('\n') || take('\r')) {
        }
    }
    bool takeDigits() {
        const std::size_t start = place_;
        while (peek() >= '0' && peek() <= '9') ++place_;
        return place_ > start;
    }

    PlainJSON value(int depth) {
        skipBlanks();
        switch (peek()) {
            case '[':
            case '{':
                accept(depth < 512);
                return container(depth + 1);
            case '"':
                return {Type::string, 0, text(), {}};
            case 'n':
                return word(U"null", {});
            case 't':
                return word(U"true", {Type::bool_, 1, {}, {}});
            case 'f':
                return word(U"false", {Type::bool_, 0, {}, {}});
            default:
                return {Type::number, number(), {}, {}};
        }
    }

    PlainJSON container(int depth) {
        const bool hasKeys = text_[place_++] == '{';
        const char32_t closing = hasKeys ? '}' : ']';
        PlainJSON result{hasKeys ? Type::dictionary : Type::array, 0, {}, {}};
        skipBlanks();
        if (take(closing)) return result;
        do {
            skipBlanks();
            if (!hasKeys) {
                result.members.push_back({"", value(depth)});
            } else {
                const std::string key = text();
                skipBlanks();
                accept(take(':'));
                result.set(key, value(depth));
            }
            skipBlanks();
        } while (take(','));
        accept(take(closing));
        return result;
    }

    PlainJSON word(std::u32string_view wanted, PlainJSON meaning) {
        accept(text_.compare(place_, wanted.size(), wanted) == 0);
        place_ += wanted.size();
        return meaning;
    }

    double number() {
        const std::size_t start = place_;
        take('-');
        if (!take('0')) accept(takeDigits());
        if (take('.')) accept(takeDigits());
        if (take('e') || take('E')) {
            if (!take('+')) take('-');
            accept(takeDigits());
        }
        const std::string numeral(text_.begin() + static_cast<std::ptrdiff_t>(start),
                                  text_.begin() + static_cast<std::ptrdiff_t>(place_));
        const double result = std::strtod(numeral.c_str(), nullptr);
        accept(std::isfinite(result));
        return result;
    }

    std::string text() {
        accept(take('"'));
        std::string result;
        while (!take('"')) {
            accept(peek() >= 0x20);
            appendUtf8(result, take('\\') ? escaped() : text_[place_++]);
        }
        return result;
    }

    char32_t escaped() {
        constexpr std::u32string_view letters = U"\"\\/bfnrt";
        constexpr std::u32string_view meanings = U"\"\\/\b\f\n\r\t";
        if (take('u')) {
            const char32_t unit = hexUnit();
            if (unit < 0xD800 || unit > 0xDFFF) return unit;
            accept(unit < 0xDC00 && take('\\') && take('u'));
            const char32_t low = hexUnit();
            accept(low >= 0xDC00 && low <= 0xDFFF);
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
        const std::size_t index = letters.find(peek());
        accept(index < letters.size());
        ++place_;
        return meanings[index];
    }

    char32_t hexUnit() {
        constexpr std::u32string_view digits = U"0123456789abcdefABCDEF";
        char32_t unit = 0;
        for (int i = 0; i < 4; ++i) {
            const std::size_t digit = digits.find(peek());
            accept(digit < digits.size());
            ++place_;
            unit = unit * 16 + static_cast<char32_t>(digit < 16 ? digit : digit - 6);
        }
        return unit;
    }

    std::u32string text_;
    std::size_t place_ = 0;
};

}  // namespace

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

std::optional<std::u32string> charactersOf(std::string_view utf8) {
    std::u32string characters;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        const std::size_t size = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        if ((byte >= 0x80 && byte < 0xC2) || byte > 0xF4 || i + size > utf8.size()) return {};
        char32_t character = size == 1 ? byte : byte & (0x7Fu >> size);
        for (std::size_t k = 1; k < size; ++k) {
            if ((utf8[i + k] & 0xC0) != 0x80) return {};
            character = character << 6 | static_cast<unsigned char>(utf8[i + k] & 0x3F);
        }
        const char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (character < least[size] || character > 0x10FFFF) return {};
        if (character >= 0xD800 && character <= 0xDFFF) return {};
        characters += character;
        i += size;
    }
    return characters;
}

std::optional<PlainJSON> PlainJSON::parse(std::string_view utf8) {
    auto characters = charactersOf(utf8);
    if (!characters) return std::nullopt;
    try {
        return PlainReader(*std::move(characters)).read();
    } catch (Refused) {
        return std::nullopt;
    }
}

PlainJSON* PlainJSON::child(const JSONKey& step) {
    if (const auto index = step.index()) {
        const bool isThere = type == Type::array && *index >= 0 &&
                             *index < static_cast<std::int64_t>(members.size());
        return isThere ? &members[static_cast<std::size_t>(*index)].value : nullptr;
    }
    if (type != Type::dictionary) return nullptr;
    const auto member = std::ranges::find(members, *step.key(), &Member::key);
    return member == members.end() ? nullptr : &member->value;
}

void PlainJSON::set(const std::string& key, PlainJSON value) {
    if (PlainJSON* const known = child(key)) {
        *known = std::move(value);
    } else {
        members.push_back({key, std::move(value)});
    }
}

std::size_t PlainJSON::size() const {
    return std::accumulate(members.begin(), members.end(), std::size_t{1},
                           [](auto sum, const auto& member) { return sum + member.value.size(); });
}

bool PlainJSON::isEqual(const PlainJSON& other) const {
    const bool isNumber = type == Type::number || type == Type::bool_;
    if (isNumber && (other.type == Type::number || other.type == Type::bool_))
        return number == other.number;
    if (type != other.type || text != other.text || members.size() != other.members.size())
        return false;
    for (std::size_t i = 0; i < members.size(); ++i) {
        const auto& [key, value] = members[i];
        const PlainJSON* const counterpart =
            type == Type::array ? &other.members[i].value : other.child(key);
        if (!counterpart || !value.isEqual(*counterpart)) return false;
    }
    return true;
}

bool PlainJSON::matches(const JSON& json) const {
    if (json.type() != type || json.count() != members.size()) return false;
    if (type == Type::bool_ && json.bool_() != (number == 1)) return false;
    if (json.stringView() != text) return false;
    if (type == Type::number && json.doubleValue() != number) {
        // A decimal keeps 38 digits, and may so be a step away from what all digits give.
        const bool isDecimal = json.object().slot().tag() == AnySlot::decimal;
        if (!isDecimal || std::nextafter(json.doubleValue(), number) != number) return false;
    }
    std::size_t position = 0;
    std::string absentKey = "?";
    for (const auto& [key, value] : json) {
        const auto& [wantedKey, wanted] = members[position];
        const bool isElement = type == Type::array;
        if (key != (isElement ? std::to_string(position) : wantedKey)) return false;
        if (!wanted.matches(value)) return false;
        if (!((isElement ? json[position] : json[key]) == value)) return false;
        absentKey += wantedKey;
        ++position;
    }
    return position == members.size() && !json[absentKey].exists() && !json[position].exists();
}

}  // namespace InkoraKit
