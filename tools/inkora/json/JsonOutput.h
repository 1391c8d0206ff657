#pragma once

#include <InkoraKit/JSON.h>

#include "ExitStatus.h"

#include <string>

namespace InkoraTool {

/// The text of any JSON value, for people: slashes as they are.
/// @throws Failure when the value is nested too deeply to be written
std::string jsonText(const InkoraKit::JSON& value,
                     InkoraKit::JSONSerialization::WritingOptions options =
                         InkoraKit::JSONSerialization::WritingOptions::prettyPrinted);

}  // namespace InkoraTool
