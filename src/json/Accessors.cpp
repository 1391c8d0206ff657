#include <InkoraKit/JSON.h>

#include "platform/foundation/text/Characters.h"
#include "platform/foundation/text/PercentEncoding.h"
#include "platform/foundation/values/Storage.h"

#include <algorithm>

namespace InkoraKit {

std::optional<std::vector<JSON>> JSON::array() const {
    if (type() != Type::array) return std::nullopt;
    const JSONElements elements = this->elements();
    return std::vector<JSON>(elements.begin(), elements.end());
}

std::vector<JSON> JSON::arrayValue() const {
    return array().value_or(std::vector<JSON>());
}

std::optional<Array> JSON::arrayObject() const {
    return contents().as<Array>();
}

void JSON::setArrayObject(const std::optional<Array>& value) & {
    setObject(value);
}

std::optional<std::map<std::string, JSON, std::less<>>> JSON::dictionary() const {
    if (type() != Type::dictionary) return std::nullopt;
    std::map<std::string, JSON, std::less<>> result;
    for (const auto& [key, value] : members()) result.emplace(key, value);
    return result;
}

std::map<std::string, JSON, std::less<>> JSON::dictionaryValue() const {
    return dictionary().value_or(std::map<std::string, JSON, std::less<>>());
}

std::optional<Dictionary> JSON::dictionaryObject() const {
    return contents().as<Dictionary>();
}

void JSON::setDictionaryObject(const std::optional<Dictionary>& value) & {
    setObject(value);
}

std::optional<bool> JSON::bool_() const noexcept {
    if (type() != Type::bool_) return std::nullopt;
    return Storage::slot(contents()).truth();
}

void JSON::setBool(std::optional<bool> value) & {
    setObject(value);
}

namespace {

/// Whether the text is the word, which is in lower case, in any case.
bool isWord(std::string_view text, std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](char character, char letter) { return lowered(character) == letter; });
}

}  // namespace

bool JSON::boolValue() const {
    switch (type()) {
        case Type::bool_:
            return Storage::slot(contents()).truth();
        case Type::number:
            return Storage::number(contents()).boolValue();
        case Type::string: {
            const std::string_view text = Storage::text(contents());
            return isWord(text, "true") || isWord(text, "y") || isWord(text, "t");
        }
        default:
            return false;
    }
}

std::optional<std::string> JSON::string() const {
    if (type() != Type::string) return std::nullopt;
    return std::string(Storage::text(contents()));
}

void JSON::setString(const std::optional<std::string>& value) & {
    setObject(value);
}

std::string JSON::stringValue() const {
    switch (type()) {
        case Type::string:
            return std::string(Storage::text(contents()));
        case Type::number:
            return Storage::number(contents()).stringValue();
        case Type::bool_:
            return Storage::slot(contents()).truth() ? "true" : "false";
        default:
            return {};
    }
}

void JSON::setStringValue(std::string_view value) & {
    setObject(value);
}

std::optional<NSNumber> JSON::number() const {
    const Type type = this->type();
    if (type == Type::number || type == Type::bool_) return numberValue();
    return std::nullopt;
}

void JSON::setNumber(const std::optional<NSNumber>& value) & {
    setObject(value);
}

NSNumber JSON::numberValue() const {
    switch (type()) {
        case Type::string: {
            const NSDecimalNumber decimal(Storage::text(contents()));
            return decimal.isNaN() ? NSDecimalNumber::zero() : decimal;
        }
        case Type::number:
            return Storage::number(contents());
        case Type::bool_:
            return std::int64_t{Storage::slot(contents()).truth()};
        default:
            return 0.0;
    }
}

std::int64_t JSON::convertedToInteger(AnySlot value) {
    return shown(value).numberValue().integerValue();
}

double JSON::convertedToDouble(AnySlot value) {
    return shown(value).numberValue().doubleValue();
}

std::optional<NSNull> JSON::null() const noexcept {
    return type() == Type::null ? std::optional(NSNull()) : std::nullopt;
}

std::optional<URL> JSON::url() const {
    if (type() != Type::string) return std::nullopt;
    const std::string_view text = Storage::text(contents());
    if (hasPercentEscape(text)) return URL::fromString(text);  // and escaping twice would spoil it
    const auto escaped = addingPercentEncodingForQuery(text);
    return escaped ? URL::fromString(*escaped) : std::nullopt;
}

void JSON::setUrl(const std::optional<URL>& value) & {
    setString(value ? std::optional(value->absoluteString()) : std::nullopt);
}

}  // namespace InkoraKit
