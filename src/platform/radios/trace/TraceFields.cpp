#include "platform/radios/trace/TraceFields.h"

#include "platform/radios/trace/Trace.h"

#include <InkoraKit/platform/Array.h>

#include <array>
#include <cmath>

namespace InkoraKit {
namespace {

constexpr std::array<std::string_view, 6> stateNames = {"unknown",      "resetting",  "unsupported",
                                                        "unauthorized", "poweredOff", "poweredOn"};
constexpr int reasonCount = 7;
constexpr double longestTrace = 1e9;  // seconds, some thirty years

[[noreturn]] void fail(std::string_view key, const char* what) {
    throw TraceFault("'" + std::string(key) + "' is not " + what);
}

template <class Value>
Value required(std::optional<Value> value, std::string_view key) {
    if (!value) throw TraceFault("'" + std::string(key) + "' is missing");
    return *std::move(value);
}

int digit(char character) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto value = digits.find(character);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

Data bytesOf(std::string_view key, std::string_view hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        const int high = digit(hex[i]);
        const int low = digit(hex[i + 1]);
        if (high < 0 || low < 0) break;
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    if (2 * bytes.size() != hex.size()) fail(key, "bytes in lower-case hexadecimal");
    return Data(bytes);
}

CBUUID uuidOf(std::string_view key, std::string_view text) {
    try {
        return CBUUID(text);
    } catch (const std::invalid_argument&) {
        fail(key, "a UUID");
    }
}

/// A whole number in the bounds; none for anything else.
std::optional<std::int64_t> integerOf(const Any& value, std::int64_t least, std::int64_t most) {
    const auto number = value.as<NSNumber>();
    if (!number || number->isBool()) return std::nullopt;
    const double real = number->doubleValue();
    if (!(real >= static_cast<double>(least) && real <= static_cast<double>(most)) ||
        real != std::floor(real))
        return std::nullopt;
    return static_cast<std::int64_t>(real);
}

constexpr std::int64_t mostNumber = std::numeric_limits<std::uint32_t>::max();

}  // namespace

std::string_view stateName(CBManagerState state) {
    return stateNames.at(static_cast<std::size_t>(state));
}

const Any* TraceFields::take(std::string_view key) {
    const auto member = members_.find(key);
    if (member == members_.end()) return nullptr;
    ++taken_;
    return &(*member).second;
}

template <class Value>
std::optional<Value> TraceFields::taken(std::string_view key, const char* what) {
    const Any* const value = take(key);
    if (!value) return std::nullopt;
    auto typed = value->as<Value>();
    if (!typed) fail(key, what);
    return typed;
}

void TraceFields::expectNothingElse() const {
    if (taken_ != members_.size()) throw TraceFault("there is a member too many");
}

double TraceFields::time() {
    const double time = required(taken<NSNumber>("at", "a time"), "at").doubleValue();
    if (!(time >= 0 && time <= longestTrace)) fail("at", "a time");
    return time;
}

UUID TraceFields::peripheral() {
    const Any* const value = take("peripheral");
    if (!value) throw TraceFault("'peripheral' is missing");
    if (const auto number = integerOf(*value, 1, mostNumber))
        return identifierOf(static_cast<std::uint32_t>(*number));
    if (const auto text = value->as<std::string_view>())
        if (const auto identifier = UUID::fromString(*text)) return *identifier;
    fail("peripheral", "a number or an identifier");
}

CBManagerState TraceFields::state(std::string_view key) {
    const std::string name = text(key);
    for (std::size_t i = 0; i < stateNames.size(); ++i)
        if (stateNames[i] == name) return static_cast<CBManagerState>(i);
    fail(key, "a state");
}

CBManagerStateReason TraceFields::reason(std::string_view key) {
    const auto name = optionalText(key);
    if (!name) return CBManagerStateReason::none;
    for (int i = 0; i < reasonCount; ++i)
        if (printed(CBManagerStateReason(i)) == name) return CBManagerStateReason(i);
    fail(key, "a reason");
}

CBUUID TraceFields::uuid(std::string_view key) {
    return uuidOf(key, text(key));
}

std::vector<CBUUID> TraceFields::uuids(std::string_view key) {
    std::vector<CBUUID> uuids;
    for (const Any& one : taken<Array>(key, "a list").value_or(Array())) {
        const auto text = one.as<std::string_view>();
        if (!text) fail(key, "a list of UUIDs");
        uuids.push_back(uuidOf(key, *text));
    }
    return uuids;
}

std::map<CBUUID, Data> TraceFields::bytesByUUID(std::string_view key) {
    std::map<CBUUID, Data> result;
    const Dictionary members = taken<Dictionary>(key, "an object").value_or(Dictionary());
    for (const auto& [uuid, value] : members) {
        const auto hex = value.as<std::string_view>();
        if (!hex) fail(key, "bytes by UUID");
        result.insert_or_assign(uuidOf(key, uuid), bytesOf(key, *hex));
    }
    return result;
}

NSError TraceFields::error() {
    return required(optionalError(), "error");
}

std::optional<NSError> TraceFields::optionalError() {
    const auto members = taken<Dictionary>("error", "an object");
    if (!members) return std::nullopt;
    TraceFields fields(*members);
    const std::string domain = fields.text("domain");
    const int code = required(fields.optionalInteger("code"), "code");
    Dictionary information;
    if (const auto text = fields.optionalText("text"))
        information.set(NSLocalizedDescriptionKey, *text);
    fields.expectNothingElse();
    return NSError(domain, code, information);
}

std::string TraceFields::text(std::string_view key) {
    return required(optionalText(key), key);
}

std::optional<std::string> TraceFields::optionalText(std::string_view key) {
    return taken<std::string>(key, "a text");
}

std::optional<Data> TraceFields::optionalBytes(std::string_view key) {
    const auto hex = optionalText(key);
    return hex ? std::optional(bytesOf(key, *hex)) : std::nullopt;
}

std::optional<int> TraceFields::optionalInteger(std::string_view key) {
    const Any* const value = take(key);
    if (!value) return std::nullopt;
    const auto integer =
        integerOf(*value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    if (!integer) fail(key, "a whole number");
    return static_cast<int>(*integer);
}

std::uint32_t TraceFields::number(std::string_view key) {
    const Any* const value = take(key);
    if (!value) throw TraceFault("'" + std::string(key) + "' is missing");
    const auto number = integerOf(*value, 0, mostNumber);
    if (!number) fail(key, "a whole number of 32 bits");
    return static_cast<std::uint32_t>(*number);
}

std::vector<std::uint32_t> TraceFields::numbers(std::string_view key) {
    std::vector<std::uint32_t> numbers;
    for (const Any& one : required(taken<Array>(key, "a list"), key)) {
        const auto number = integerOf(one, 0, mostNumber);
        if (!number) fail(key, "a list of whole numbers");
        numbers.push_back(static_cast<std::uint32_t>(*number));
    }
    return numbers;
}

std::optional<bool> TraceFields::optionalFlag(std::string_view key) {
    const Any* const value = take(key);
    if (!value) return std::nullopt;
    const auto number = value->as<NSNumber>();
    if (!number || !number->isBool()) fail(key, "true or false");
    return number == NSNumber(true);
}

void TraceFields::each(std::string_view key, const std::function<void(TraceFields&)>& take) {
    const Array list = taken<Array>(key, "a list").value_or(Array());
    for (const Any& one : list) {
        const auto members = one.as<Dictionary>();
        if (!members) fail(key, "a list of objects");
        TraceFields fields(*members);
        take(fields);
        fields.expectNothingElse();
    }
}

}  // namespace InkoraKit
