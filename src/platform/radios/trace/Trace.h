#pragma once

#include "platform/bluetooth/radio.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace InkoraKit {

/// The only version that there is of what a trace looks like.
inline constexpr int traceVersion = 1;

/// What a radio was asked.
struct TraceCommand {
    std::string name;
    std::optional<UUID> peripheral = {};
    std::optional<AttributeHandle> handle = {};

    /// `read 1 5`: what it is of, with what was a number in the trace shown as one.
    std::string description() const;
    friend bool operator==(const TraceCommand&, const TraceCommand&) = default;
};

/// What a radio answers when asked, as of its last change of state.
struct TraceAnswers {
    CBManagerStateReason reason = CBManagerStateReason::none;
    RadioCapabilities capabilities;
};

/// Plays what a radio reported.
using TraceEvent = std::function<void(RadioListener&, TraceAnswers&)>;

/// Nothing more was recorded.
struct TraceEnd {};

struct TraceEntry {
    std::size_t line;  // from 1
    double at;         // seconds from the start of the radio
    std::variant<TraceCommand, TraceEvent, TraceEnd> what;
};

/// A trace as it was read, whose last entry is the end.
using Trace = std::vector<TraceEntry>;

/// Reads a trace, a JSON object a line.
/// @throws NSError (NSCocoaErrorDomain 3840) whose description names the line.
Trace readTrace(std::string_view text);

/// The identifier that stands for a peripheral of which a trace tells a number alone; and back.
UUID identifierOf(std::uint32_t number);
std::optional<std::uint32_t> numberOf(const UUID& identifier);

}  // namespace InkoraKit
