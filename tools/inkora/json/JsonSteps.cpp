#include "json/JsonSteps.h"

#include "Failure.h"
#include "JsonLine.h"
#include "Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

bool isPosition(std::string_view step) {
    if (step.starts_with('-')) step.remove_prefix(1);
    return !step.empty() && step.find_first_not_of("0123456789") == std::string_view::npos;
}

/// What is beyond all integers is beyond all arrays as well.
std::int64_t positionFrom(const std::string& step) {
    std::int64_t position = 0;
    const auto read = std::from_chars(step.data(), step.data() + step.size(), position);
    return read.ec == std::errc() ? position : std::numeric_limits<std::int64_t>::max();
}

JSONKey keyFrom(const std::string& step, const JSON& container) {
    if (container.type() == Type::array && isPosition(step)) return positionFrom(step);
    return step;
}

std::string shown(const JSONPath& path) {
    std::string text;
    for (const JSONKey& key : path) {
        text += text.empty() ? '[' : ',';
        text += key.key() ? jsonString(*key.key()) : std::to_string(*key.index());
    }
    return text + ']';
}

}  // namespace

JSONPath pathIn(const JSON& document, const std::vector<std::string>& steps, LastStep last) {
    JSONPath path;
    JSON value = document;
    for (const std::string& step : steps) {
        const JSONKey key = keyFrom(step, value);
        path.append(key);
        const bool mayBeMissing = last == LastStep::mayBeAdded && path.size() == steps.size() &&
                                  value.type() == Type::dictionary;
        value = std::as_const(value)[JSONPath{key}];
        const auto error = value.error();
        if (error && !mayBeMissing)
            throw Failure(ExitStatus::noSuchPlace,
                          printableText(error->localizedDescription()) + ", at " + shown(path));
    }
    return path;
}

}  // namespace InkoraTool
