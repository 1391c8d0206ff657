#pragma once

#include "Command.h"

#include <string>

namespace InkoraTool {

// What `inkora json` consists of. Each throws a `Failure` where it cannot do what it was asked.

Command jsonGetCommand();
Command jsonSetCommand();
Command jsonMergeCommand();
Command jsonFormatCommand();

/// The document that each of them reads first.
Operand jsonFile(std::string& file);

/// Of those that take JSON Lines.
Flag jsonLines(bool& areLines);

}  // namespace InkoraTool
