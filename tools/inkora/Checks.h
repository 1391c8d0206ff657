#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>

namespace InkoraTool {

/// Accepts a time in seconds: a finite number above zero.
CLI::Validator aTime();

/// Accepts a whole number in these bounds.
CLI::Validator aNumber(std::int64_t least, std::int64_t most);

}  // namespace InkoraTool
