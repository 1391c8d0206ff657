#include <InkoraKit/JSON.h>

#include "JSONError.h"
#include "NullCastingWriter.h"
#include "platform/foundation/process/ConsoleLine.h"
#include "platform/foundation/text/TextEncoding.h"

#include <ostream>
#include <span>

namespace InkoraKit {

namespace {

using WritingOptions = JSONSerialization::WritingOptions;

using Options = std::map<writtingOptionsKeys, Any>;

/// The option; absent when there is none.
Any option(const Options& options, writtingOptionsKeys key) {
    const auto found = options.find(key);
    return found == options.end() ? Any() : found->second;
}

std::optional<std::int64_t> integer(const Any& value) {
    const auto number = value.as<NSNumber>();
    if (!number || std::string_view("csiq").find(*number->objCType()) == std::string_view::npos)
        return std::nullopt;
    return number->integerValue();
}

template <class Value>
Value enumerator(const Any& option, Value standard) {
    const auto* const value = option.as<Value>();
    return value ? *value : standard;
}

std::optional<std::string> containerText(const Any& container, StringEncoding encoding,
                                         WritingOptions options) {
    std::string text;
    try {
        text = JSONSerialization::text(container, options);
    } catch (const NSError&) {
        return std::nullopt;
    }
    if (encoding == StringEncoding::utf8) return text;
    return decoded(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()),
                   encoding);
}

/// Of a value that is neither array nor dictionary.
std::optional<std::string> leafText(const JSON& leaf) {
    if (leaf.type() == Type::unknown) return std::nullopt;
    return leaf.type() == Type::null ? "null" : leaf.stringValue();
}

bool isContainer(const JSON& json) {
    return json.type() == Type::array || json.type() == Type::dictionary;
}

}  // namespace

Data JSON::rawData(WritingOptions options) const {
    const auto invalid = [] { return jsonError(ErrorInvalidJSON, "JSON is invalid"); };
    if (!isContainer(*this)) throw invalid();
    try {
        return JSONSerialization::data(contents(), options);
    } catch (const NSError&) {
        throw invalid();
    }
}

std::optional<std::string> JSON::rawString(StringEncoding encoding, WritingOptions options) const {
    return isContainer(*this) ? containerText(contents(), encoding, options) : leafText(*this);
}

std::optional<std::string> JSON::rawString(
    const std::map<writtingOptionsKeys, Any>& options) const {
    using enum writtingOptionsKeys;
    const std::int64_t mostNested = integer(option(options, maxObjextDepth)).value_or(10);
    if (mostNested < 0) {
        printConsoleLine(
            "Could not serialize object to JSON because: Element too deep. Increase "
            "maxObjectDepth and make sure there is no reference loop");
        return std::nullopt;
    }
    const auto castsNil = option(options, castNilToNSNull).as<NSNumber>();
    if (isContainer(*this) && castsNil && castsNil->isBool() && castsNil->boolValue())
        return textCastingNilToNull(contents(), mostNested);
    return rawString(enumerator(option(options, encoding), StringEncoding::utf8),
                     enumerator(option(options, jsonSerialization), WritingOptions::prettyPrinted));
}

std::string JSON::description() const {
    return rawString().value_or("unknown");
}

std::ostream& operator<<(std::ostream& stream, const JSON& json) {
    return stream << json.description();
}

}  // namespace InkoraKit
