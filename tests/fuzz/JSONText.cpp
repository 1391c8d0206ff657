#include "JSONText.h"

#include "PlainJSON.h"
#include "support/EncodedText.h"

#include <algorithm>

namespace InkoraKit {
namespace {

using Reading = JSONSerialization::ReadingOptions;
using Writing = JSONSerialization::WritingOptions;

/// Absent when the bytes are no JSON text.
Any readText(std::string_view bytes) {
    try {
        return JSONSerialization::jsonObject(bytes, Reading::allowFragments);
    } catch (const NSError& error) {
        require(error.code() == 3840 && error.domain() == NSCocoaErrorDomain, "the kind of error");
        const auto offset = error.userInfo().find(NSJSONSerializationErrorIndexKey);
        if (offset != error.userInfo().end()) {
            const auto place = offset->second.as<NSNumber>()->unsignedIntegerValue();
            require(place <= bytes.size(), "a fault lies within the text");
        }
        return {};
    }
}

void checkWriting(const Any& value) {
    const auto written = [](const Any& any, Writing options) {
        return JSONSerialization::text(any, options | Writing::allowFragments);
    };
    for (const Writing options :
         {Writing::none, Writing::prettyPrinted, Writing::sortedKeys,
          Writing::prettyPrinted | Writing::sortedKeys | Writing::withoutEscapingSlashes}) {
        const Any second = readText(written(value, options));
        require(second == value && second.hash() == value.hash(), "a text reads back");
        // The first text may hold a decimal, or a negative zero, that reads as a simpler number.
        const std::string text = written(second, options);
        require(written(readText(text), options) == text, "a text stays");
    }
}

}  // namespace

void checkJSONText(std::string_view bytes) {
    const Any value = readText(bytes);
    // What is read may be a level deeper than what can be written.
    const bool isShallow = std::count_if(bytes.begin(), bytes.end(), [](char byte) {
                               return byte == '[' || byte == '{';
                           }) < 512;
    if (value.hasValue() && (isShallow || JSONSerialization::isValidJSONObject(value)))
        checkWriting(value);
    const bool hasMark = bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE");
    if (hasMark || bytes.substr(0, 4).find('\0') != std::string_view::npos) return;  // not UTF-8

    const auto plain = parsePlainly(bytes);
    require(plain.has_value() == value.hasValue(), "two readers take the same texts");
    if (!plain) return;
    require(matches(*plain, value), "two readers find the same values");
    const std::string mark = bytes.starts_with("\uFEFF") ? "" : "\uFEFF";
    for (const char* encoding : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"})
        require(readText(encodedText(mark + std::string(bytes), encoding)) == value,
                "every encoding gives the same value");
}

}  // namespace InkoraKit
