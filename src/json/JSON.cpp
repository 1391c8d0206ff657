#include <InkoraKit/JSON.h>

#include "Conversion.h"
#include "JSONError.h"
#include "platform/foundation/Storage.h"
#include "platform/foundation/TextEncoding.h"

namespace InkoraKit {

JSON::JSON(std::initializer_list<std::pair<std::string_view, JSON>> members)
    : value_(Storage::emptyDictionary()) {
    Storage::reserve(value_, members.size());
    for (const auto& [key, member] : members)
        Storage::writableMember(value_, key) = member.object();
}

JSON::JSON(const Data& data, JSONSerialization::ReadingOptions options,
           std::optional<NSError>* error) {
    try {
        value_ = JSONSerialization::jsonObject(data, options);
    } catch (const NSError& fault) {
        if (error) *error = fault;
    }
}

JSON JSON::parse(std::string_view text) {
    // The reader would take some texts that are not UTF-8 for another encoding.
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    if (detectEncoding(bytes).encoding != StringEncoding::utf8 && !isUtf8(text)) return {};
    JSON result;
    try {
        result.value_ =
            JSONSerialization::jsonObject(text, JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError&) {
        return {};
    }
    return result;
}

std::optional<JSON> JSON::fromRawValue(const Any& object) {
    JSON result(object);
    if (result.type() == Type::unknown) return std::nullopt;
    return result;
}

Any JSON::object() const {
    const Type type = this->type();
    return type == Type::null || type == Type::unknown ? Any(NSNull()) : value_;
}

void JSON::setObject(Any object) & {
    Any formerArray;
    if (Storage::tag(value_) == AnySlot::array) {
        formerArray = std::move(value_);
    } else if (aside_) {
        formerArray = std::move(aside_->formerArray);
    }
    aside_.reset();

    if (isArrayOfJSON(object)) {
        value_ = formerArray.hasValue() ? formerArray : Storage::emptyArray();
    } else if (auto members = dictionaryFromMap(object)) {
        value_ = *std::move(members);
    } else {
        value_ = std::move(object);
    }
    if (formerArray.hasValue() && Storage::tag(value_) != AnySlot::array)
        aside_.reset(new Aside{.formerArray = std::move(formerArray)});
}

namespace {

std::string quoted(const JSONKey& step) {
    if (const auto index = step.index()) return "Array[" + std::to_string(*index) + ']';
    return "Dictionary[\"" + *step.key() + "\"]";
}

std::string errorText(std::int64_t code, const JSONKey& step) {
    switch (code) {
        case ErrorIndexOutOfBounds:
            return quoted(step) + " is out of bounds";
        case ErrorNotExist:
            return quoted(step) + " does not exist";
        case ErrorWrongType:
            return quoted(step) + " failure, It is not an " +
                   (step.index() ? "array" : "dictionary");
        default:
            return "It is a unsupported type";
    }
}

}  // namespace

std::optional<NSError> JSON::error() const {
    if (type() == Type::unknown)
        return jsonError(ErrorUnsupportedType, errorText(ErrorUnsupportedType, 0));
    if (!aside_ || aside_->code == 0) return std::nullopt;
    return jsonError(aside_->code, errorText(aside_->code, aside_->step));
}

bool JSON::exists() const noexcept {
    return !aside_ || aside_->code == 0 || aside_->code == ErrorUnsupportedType;
}

void JSON::AsideDeleter::operator()(Aside* aside) const noexcept {
    delete aside;
}

std::unique_ptr<JSON::Aside, JSON::AsideDeleter> JSON::copyOf(const Aside& aside) {
    return std::unique_ptr<Aside, AsideDeleter>(new Aside(aside));
}

}  // namespace InkoraKit
