#include "json/JsonSteps.h"

#include "Failure.h"
#include "JsonLine.h"
#include "Text.h"
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

/// What is beyond all integers is beyond all arrays as well, and so is what is before the first
/// element.
std::int64_t positionFrom(const std::string& step, std::size_t count) {
    std::int64_t position = 0;
    const auto read = std::from_chars(step.data(), step.data() + step.size(), position);
    if (read.ec != std::errc()) return std::numeric_limits<std::int64_t>::max();
    const std::int64_t fromStart = position + static_cast<std::int64_t>(count);
    return position < 0 && fromStart >= 0 ? fromStart : position;
}

JSONKey keyFrom(const std::string& step, const JSON& container) {
    if (container.type() == Type::array && isPosition(step))
        return positionFrom(step, container.count());
    return step;
}

/// For those who are used to paths like `.a.b[0]`: how such a one is written here.
std::string hintFor(const std::string& step) {
    constexpr std::string_view separators = ".[]\"";
    if (step.find_first_of(".[") == std::string::npos) return "";
    std::string words;
    for (std::string_view rest = step; !rest.empty();) {
        rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
        const std::string_view word = rest.substr(0, rest.find_first_of(separators));
        rest.remove_prefix(word.size());
        if (!word.empty()) words += ' ' + shellWord(word);
    }
    return words.empty() ? "; the whole document has no path"
                         : "; each step of a path is a word:" + words;
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
                          printableText(error->localizedDescription() + ", at " + shown(path) +
                                        hintFor(step)));
    }
    return path;
}

}  // namespace InkoraTool
