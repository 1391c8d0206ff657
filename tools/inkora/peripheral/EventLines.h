#pragma once

#include "palette/Colour.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace InkoraTool {

/// What belongs to an event, by its name: a text, or a number of percent.
using EventFields =
    std::vector<std::pair<std::string_view, std::variant<std::string, std::int64_t>>>;

/// How what happens to a pen is put into lines: for people or for programs.
class EventLines {
public:
    virtual ~EventLines() = default;

    virtual std::string event(std::string_view name, const EventFields& fields) const = 0;
    virtual std::string captured(const Colour& colour) const = 0;
};

/// JSON, a line an object, or text that suits standard output.
std::unique_ptr<EventLines> makeEventLines(bool json);

}  // namespace InkoraTool
