#pragma once

#include <InkoraKit/JSON.h>

#include <string>

namespace InkoraTool {

/// The name of the operand that stands for standard input.
inline constexpr const char* standardInput = "-";

/// The JSON document in a file.
/// @throws JsonFailure when the file cannot be read, or is no JSON text
InkoraKit::JSON readJson(const std::string& file);

}  // namespace InkoraTool
