#include <InkoraKit/JSON.h>

#include "Aside.h"
#include "Conversion.h"
#include "JSONError.h"
#include "platform/foundation/text/TextEncoding.h"
#include "platform/foundation/values/Storage.h"

#include <mutex>

namespace InkoraKit {

JSON::JSON(std::initializer_list<std::pair<std::string_view, JSON>> members)
    : value_(Storage::emptyDictionary()) {
    Storage::reserve(value_, members.size());
    for (const auto& [key, member] : members) Storage::set(value_, key, unwrapped(member.object()));
    settle();
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
    return type == Type::null || type == Type::unknown ? Any(NSNull()) : contents();
}

const JSON::Aside* JSON::aside() const noexcept {
    return value_.slot().tag() == AnySlot::object ? value_.as<Aside>() : nullptr;
}

const Any& JSON::contentsOfObject(const Any& value) noexcept {
    const Aside* const aside = value.as<Aside>();
    return aside ? aside->contents : value;
}

const Any& JSON::shownContentsOfObject(const Any& value) noexcept {
    const Any& contents = contentsOfObject(value);
    if (!isForeignContainer(contents)) return contents;
    const Aside& aside = *value.as<Aside>();
    static std::mutex mutex;  // copies on other threads ask as well
    const std::scoped_lock lock(mutex);
    if (!aside.shown.hasValue()) aside.shown = withShownParts(contents);
    return aside.shown;
}

Any JSON::takeFormerArray() {
    const Aside* const aside = this->aside();
    if (!aside) return {};
    Any formerArray = aside->formerArray;
    value_ = Any(aside->contents);
    return formerArray;
}

void JSON::settle(Any formerArray) {
    if (formerArray.hasValue() || isForeignContainer(value_))
        value_ = Aside{.contents = std::move(value_),
                       .code = 0,
                       .step = 0,
                       .formerArray = std::move(formerArray),
                       .shown = {}};
}

void JSON::setObject(Any object) & {
    Any formerArray = takeFormerArray();
    if (Storage::tag(value_) == AnySlot::array) formerArray = std::move(value_);

    if (isArrayOfJSON(object)) {
        value_ = formerArray.hasValue() ? formerArray : Storage::emptyArray();
    } else if (auto members = dictionaryFromMap(object)) {
        value_ = *std::move(members);
    } else {
        value_ = std::move(object);
    }
    if (Storage::tag(value_) == AnySlot::array) formerArray = {};
    settle(std::move(formerArray));
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
    const Aside* const aside = this->aside();
    if (!aside || aside->code == 0) return std::nullopt;
    return jsonError(aside->code, errorText(aside->code, aside->step));
}

bool JSON::exists() const noexcept {
    const Aside* const aside = this->aside();
    return !aside || aside->code == 0 || aside->code == ErrorUnsupportedType;
}

}  // namespace InkoraKit
