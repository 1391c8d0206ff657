#pragma once

#include <InkoraKit/JSON.h>

#include "json/JsonTextFault.h"

#include <string>
#include <string_view>

namespace InkoraTool {

/// The JSON document that a text is.
/// @param file where the text is from
/// @throws Failure when it is none
InkoraKit::JSON jsonIn(std::string_view text, const std::string& file, const TextStart& start = {});

/// The JSON document in a file.
/// @throws Failure when the file cannot be read, or is no JSON text
InkoraKit::JSON readJson(const std::string& file);

}  // namespace InkoraTool
