#include "JsonLine.h"

#include "Utf8.h"

#include <InkoraKit/platform/NSNumber.h>

#include <cmath>

namespace InkoraTool {
namespace {

void appendEscaped(std::string& quoted, char32_t codePoint) {
    if (codePoint == '"' || codePoint == '\\') {
        quoted += '\\';
        quoted += static_cast<char>(codePoint);
    } else if (isControl(codePoint)) {
        constexpr std::string_view digits = "0123456789abcdef";
        quoted += "\\u00";
        quoted += digits[codePoint >> 4];
        quoted += digits[codePoint & 0xF];
    } else {
        appendUtf8(quoted, codePoint);
    }
}

}  // namespace

std::string jsonString(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) appendEscaped(quoted, takeCodePoint(text));
    return quoted + '"';
}

JsonLine& JsonLine::add(std::string_view key, std::string_view value) {
    return addRaw(key, jsonString(value));
}

JsonLine& JsonLine::add(std::string_view key, std::int64_t value) {
    return addRaw(key, std::to_string(value));
}

JsonLine& JsonLine::add(std::string_view key, double value) {
    if (!std::isfinite(value)) return addRaw(key, "null");
    return addRaw(key, InkoraKit::NSNumber(value).stringValue());
}

JsonLine& JsonLine::addRaw(std::string_view key, std::string_view value) {
    if (members_.size() > 1) members_ += ',';
    members_ += jsonString(key);
    members_ += ':';
    members_ += value;
    return *this;
}

}  // namespace InkoraTool
