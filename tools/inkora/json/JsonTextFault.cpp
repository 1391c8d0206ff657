#include "json/JsonTextFault.h"

#include <InkoraKit/platform/JSONSerialization.h>

#include "Utf8.h"

#include <algorithm>
#include <optional>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t mostShown = 40;  // characters on either side of the place
constexpr std::size_t longestCharacter = 4;
constexpr const char* margin = "\n    ";

/// A place in a UTF-8 text.
struct Place {
    std::size_t offset;
    std::size_t lineStart;
    std::ptrdiff_t line;  // from 1
};

Place placeAt(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t textStart = before.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    return {before.size(), lineBreak == std::string_view::npos ? textStart : lineBreak + 1,
            std::count(before.begin(), before.end(), '\n') + 1};
}

/// How the reader ends its reason where it read the text as UTF-8.
std::string readersWords(const Place& place) {
    return " around line " + std::to_string(place.line) + ", column " +
           std::to_string(place.offset - place.lineStart) + ".";
}

std::optional<std::size_t> offsetIn(const NSError& error) {
    const auto found = error.userInfo().find(NSJSONSerializationErrorIndexKey);
    if (found == error.userInfo().end()) return std::nullopt;
    const auto offset = (*found).second.as<NSNumber>();
    return offset ? std::optional(static_cast<std::size_t>(offset->integerValue())) : std::nullopt;
}

/// Unicode has pictures of the ASCII controls.
char32_t pictureOf(char32_t codePoint) {
    if (codePoint < 0x20) return 0x2400 + codePoint;
    if (codePoint == 0x7F) return 0x2421;
    return isControl(codePoint) ? replacementCharacter : codePoint;
}

std::string pictured(std::string_view text) {
    std::string shown;
    while (!text.empty()) appendUtf8(shown, pictureOf(takeCodePoint(text)));
    return shown;
}

std::size_t characterBefore(std::string_view text, const Place& place, std::size_t end) {
    const auto continues = [text](std::size_t i) { return (text[i] & 0xC0) == 0x80; };
    std::size_t start = end - 1;
    while (start > place.lineStart && end - start < longestCharacter && continues(start)) --start;
    return start;
}

/// The end of what precedes the place in its line.
std::string_view nearBefore(std::string_view text, const Place& place) {
    std::size_t start = place.offset;
    for (std::size_t i = 0; i < mostShown && start > place.lineStart; ++i)
        start = characterBefore(text, place, start);
    return text.substr(start, place.offset - start);
}

/// The start of what follows the place in its line.
std::string_view nearAfter(std::string_view text, const Place& place) {
    const std::string_view near = text.substr(place.offset, mostShown * longestCharacter);
    return firstCodePoints(near.substr(0, near.find('\n')), mostShown);
}

std::string excerpt(std::string_view text, const Place& place) {
    const std::string_view before = nearBefore(text, place);
    const std::string_view after = nearAfter(text, place);
    const std::size_t end = place.offset + after.size();
    const bool isCutBefore = place.offset - before.size() > place.lineStart;
    const bool isCutAfter = end < text.size() && text[end] != '\n';
    return margin + std::string(isCutBefore ? "…" : "") + pictured(before) + pictured(after) +
           (isCutAfter ? "…" : "") + margin +
           std::string(codePointCount(before) + (isCutBefore ? 1 : 0), ' ') + '^';
}

std::string withoutEnd(std::string text, std::string_view end) {
    if (text.ends_with(end)) text.resize(text.size() - end.size());
    return text;
}

}  // namespace

std::string reasonOf(const NSError& error) {
    const auto found = error.userInfo().find(NSDebugDescriptionErrorKey);
    const bool isThere = found != error.userInfo().end();
    return (isThere ? (*found).second.as<std::string>() : std::nullopt)
        .value_or(error.localizedDescription());
}

std::string jsonTextFault(std::string_view name, std::string_view text, const NSError& error,
                          const TextStart& start) {
    const std::string reason = reasonOf(error);
    const auto offset = offsetIn(error);
    if (!offset) return std::string(name) + ": " + withoutEnd(reason, ".");
    const std::string atByte = "byte " + std::to_string(start.byte + *offset) + " from 0";
    const Place place = placeAt(text, *offset);
    if (!reason.ends_with(readersWords(place)))
        return std::string(name) + ": " + withoutEnd(reason, ".") + " (column from 0; " + atByte +
               "; not shown, since the text is in UTF-16 or UTF-32)";
    const std::string_view before = text.substr(place.lineStart, place.offset - place.lineStart);
    return std::string(name) + ", line " + std::to_string(start.line + place.line - 1) +
           ", column " + std::to_string(codePointCount(before) + 1) + " (characters from 1; " +
           atByte + "): " + withoutEnd(withoutEnd(reason, readersWords(place)), ".") +
           excerpt(text, place);
}

}  // namespace InkoraTool
