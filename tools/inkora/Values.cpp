#include "Values.h"

#include "Text.h"

#include <cmath>
#include <utility>

namespace InkoraTool {

Take aText(std::string& text) {
    return [&text](const std::string& given) {
        text = given;
        return std::string();
    };
}

Take aTime(std::optional<double>& time) {
    return [&time](const std::string& text) {
        const auto value = numberFrom<double>(text);
        if (!value || !std::isfinite(*value) || *value <= 0)
            return "'" + text + "' is not a number of seconds above 0";
        time = value;
        return std::string();
    };
}

Take aNumber(std::int64_t least, std::int64_t most, std::function<void(std::int64_t)> keep) {
    return [least, most, keep = std::move(keep)](const std::string& text) {
        const auto value = numberFrom<std::int64_t>(text);
        if (!value || *value < least || *value > most)
            return "'" + text + "' is not a whole number from " + std::to_string(least) + " to " +
                   std::to_string(most);
        keep(*value);
        return std::string();
    };
}

}  // namespace InkoraTool
