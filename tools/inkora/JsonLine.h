#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace InkoraTool {

/// A JSON object (RFC 8259) on one line, built member by member:
/// `JsonLine().add("event", "battery").add("percent", level).text()`.
class JsonLine {
public:
    JsonLine& add(std::string_view key, std::string_view value);
    JsonLine& add(std::string_view key, std::int64_t value);
    /// The shortest number that reads back the same; null for what JSON has no number for.
    JsonLine& add(std::string_view key, double value);

    /// Null when there is none.
    template <class Value>
    JsonLine& add(std::string_view key, const std::optional<Value>& value) {
        return value ? add(key, *value) : addRaw(key, "null");
    }

    std::string text() const { return members_ + '}'; }

private:
    JsonLine& addRaw(std::string_view key, std::string_view value);

    std::string members_ = "{";
};

/// The text in quotes, escaped where JSON demands it. What is not UTF-8 is replaced.
std::string jsonString(std::string_view text);

}  // namespace InkoraTool
