#pragma once

#include <InkoraKit/JSON.h>

#include <string>

namespace InkoraTool {

/// The JSON document in a file.
/// @throws Failure when the file cannot be read, or is no JSON text
InkoraKit::JSON readJson(const std::string& file);

}  // namespace InkoraTool
