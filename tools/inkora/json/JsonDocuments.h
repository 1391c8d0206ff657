#pragma once

#include <InkoraKit/JSON.h>

#include "ExitStatus.h"

#include <functional>
#include <string>

namespace InkoraTool {

/// What to print for a document, which is by itself or one of many lines.
/// @throws Failure when there is nothing to print for it
using TextOfDocument = std::function<std::string(const InkoraKit::JSON& document, bool isLine)>;

/// Prints a text for the document in a file or, where it holds JSON Lines, for that in each line as
/// soon as it is there. Of lines, one that is no JSON is told on standard error, and one for which
/// there is nothing to print is passed over.
/// @param areLines whether they are known to be lines; else they are if the first line is a
/// document by itself and there is more
/// @return `malformed` where a line was no JSON
/// @throws Failure when the file cannot be read; when the only document is no JSON; when there was
/// nothing to print for any
ExitStatus printDocuments(const std::string& file, bool areLines, const TextOfDocument& textOf);

}  // namespace InkoraTool
