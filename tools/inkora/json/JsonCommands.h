#pragma once

#include "Command.h"

namespace InkoraTool {

// What `inkora json` consists of. Each throws a `Failure` where it cannot do what it was asked.

Command jsonGetCommand();
Command jsonSetCommand();
Command jsonMergeCommand();
Command jsonFormatCommand();

}  // namespace InkoraTool
