#pragma once

#include "Command.h"

namespace InkoraTool {

// What `inkora json` consists of. Each throws a `JsonFailure` where it cannot do what it was asked.

Command addJsonGetCommand(CLI::App& json);
Command addJsonSetCommand(CLI::App& json);
Command addJsonMergeCommand(CLI::App& json);
Command addJsonFormatCommand(CLI::App& json);

}  // namespace InkoraTool
