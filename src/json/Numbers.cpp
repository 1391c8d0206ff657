#include <InkoraKit/JSON.h>

namespace InkoraKit {

namespace {

template <auto conversion>
auto converted(const std::optional<NSNumber>& number) {
    return number ? std::optional(((*number).*conversion)()) : std::nullopt;
}

}  // namespace

std::optional<double> JSON::double_() const {
    return converted<&NSNumber::doubleValue>(number());
}

std::optional<float> JSON::float_() const {
    return converted<&NSNumber::floatValue>(number());
}

std::optional<std::int64_t> JSON::int_() const {
    return converted<&NSNumber::integerValue>(number());
}

std::optional<std::uint64_t> JSON::uInt() const {
    return converted<&NSNumber::unsignedIntegerValue>(number());
}

std::optional<std::int8_t> JSON::int8() const {
    return converted<&NSNumber::charValue>(number());
}

std::optional<std::uint8_t> JSON::uInt8() const {
    return converted<&NSNumber::unsignedCharValue>(number());
}

std::optional<std::int16_t> JSON::int16() const {
    return converted<&NSNumber::shortValue>(number());
}

std::optional<std::uint16_t> JSON::uInt16() const {
    return converted<&NSNumber::unsignedShortValue>(number());
}

std::optional<std::int32_t> JSON::int32() const {
    return converted<&NSNumber::intValue>(number());
}

std::optional<std::uint32_t> JSON::uInt32() const {
    return converted<&NSNumber::unsignedIntValue>(number());
}

std::optional<std::int64_t> JSON::int64() const {
    return converted<&NSNumber::longLongValue>(number());
}

std::optional<std::uint64_t> JSON::uInt64() const {
    return converted<&NSNumber::unsignedLongLongValue>(number());
}

float JSON::floatValue() const {
    return numberValue().floatValue();
}

std::uint64_t JSON::uIntValue() const {
    return numberValue().unsignedIntegerValue();
}

std::int8_t JSON::int8Value() const {
    return numberValue().charValue();
}

std::uint8_t JSON::uInt8Value() const {
    return numberValue().unsignedCharValue();
}

std::int16_t JSON::int16Value() const {
    return numberValue().shortValue();
}

std::uint16_t JSON::uInt16Value() const {
    return numberValue().unsignedShortValue();
}

std::int32_t JSON::int32Value() const {
    return numberValue().intValue();
}

std::uint32_t JSON::uInt32Value() const {
    return numberValue().unsignedIntValue();
}

std::int64_t JSON::int64Value() const {
    return numberValue().longLongValue();
}

std::uint64_t JSON::uInt64Value() const {
    return numberValue().unsignedLongLongValue();
}

void JSON::setDouble(std::optional<double> value) & {
    setObject(value);
}

void JSON::setFloat(std::optional<float> value) & {
    setObject(value);
}

void JSON::setInt(std::optional<std::int64_t> value) & {
    setObject(value);
}

void JSON::setUInt(std::optional<std::uint64_t> value) & {
    setObject(value);
}

// Kept in the platform's native width, as hosts know it.
void JSON::setInt8(std::optional<std::int8_t> value) & {
    setInt(value);
}

void JSON::setUInt8(std::optional<std::uint8_t> value) & {
    setObject(value);
}

void JSON::setInt16(std::optional<std::int16_t> value) & {
    setObject(value);
}

void JSON::setUInt16(std::optional<std::uint16_t> value) & {
    setObject(value);
}

void JSON::setInt32(std::optional<std::int32_t> value) & {
    setObject(value);
}

void JSON::setUInt32(std::optional<std::uint32_t> value) & {
    setObject(value);
}

void JSON::setInt64(std::optional<std::int64_t> value) & {
    setObject(value);
}

void JSON::setUInt64(std::optional<std::uint64_t> value) & {
    setObject(value);
}

}  // namespace InkoraKit
