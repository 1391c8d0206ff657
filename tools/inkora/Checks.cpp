#include "Checks.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace InkoraTool {
namespace {

template <class Value>
std::optional<Value> valueOf(const std::string& text) {
    const char* const end = text.data() + text.size();
    Value value{};
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

}  // namespace

CLI::Validator aTime() {
    return {[](const std::string& text) {
                const auto value = valueOf<double>(text);
                if (value && std::isfinite(*value) && *value > 0) return std::string();
                return "'" + text + "' is not a number of seconds above 0";
            },
            ""};
}

CLI::Validator aNumber(std::int64_t least, std::int64_t most) {
    return {[least, most](const std::string& text) {
                const auto value = valueOf<std::int64_t>(text);
                if (value && *value >= least && *value <= most) return std::string();
                return "'" + text + "' is not a whole number from " + std::to_string(least) +
                       " to " + std::to_string(most);
            },
            ""};
}

}  // namespace InkoraTool
