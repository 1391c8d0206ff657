#pragma once

#include <algorithm>
#include <cctype>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace InkoraTool {

/// The text without such characters at its ends.
constexpr std::string_view trimmed(std::string_view text, std::string_view characters) {
    const std::size_t start = text.find_first_not_of(characters);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(characters) - start + 1);
}

/// Takes the text up to the next line feed, and that.
constexpr std::string_view takeLine(std::string_view& rest) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    return line;
}

/// The text with small letters instead of ASCII's capitals.
inline std::string lowered(std::string_view text) {
    std::string small(text);
    std::transform(small.begin(), small.end(), small.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return small;
}

/// The number that the whole text is, if it is one; a whole one may be to another base than 10.
template <class Number>
std::optional<Number> numberFrom(std::string_view text, std::same_as<int> auto... base) {
    const char* const end = text.data() + text.size();
    Number number{};
    const auto [stop, error] = std::from_chars(text.data(), end, number, base...);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

/// The text as a shell takes it for one word.
inline std::string shellWord(std::string_view text) {
    const bool isPlain = std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 ||
               std::string_view("_-./").find(static_cast<char>(c)) != std::string_view::npos;
    });
    if (isPlain && !text.empty()) return std::string(text);
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

}  // namespace InkoraTool
