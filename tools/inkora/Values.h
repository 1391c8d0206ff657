#pragma once

#include "Command.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace InkoraTool {

/// Takes any text.
Take aText(std::string& text);

/// Takes a time in seconds: a finite number above zero.
Take aTime(std::optional<double>& time);

/// Takes a whole number in these bounds.
Take aNumber(std::int64_t least, std::int64_t most, std::function<void(std::int64_t)> keep);

}  // namespace InkoraTool
