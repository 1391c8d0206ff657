#pragma once

#include <InkoraKit/JSON.h>

#include <string>
#include <vector>

namespace InkoraTool {

enum class LastStep {
    isThere,
    mayBeAdded,  ///< if it is a key of a dictionary
};

/// The path that arguments mean in a document: digits are a position where an array is, with a
/// minus from its end, and all else is a key.
/// @throws Failure at the first step that cannot be taken
InkoraKit::JSONPath pathIn(const InkoraKit::JSON& document, const std::vector<std::string>& steps,
                           LastStep last);

}  // namespace InkoraTool
