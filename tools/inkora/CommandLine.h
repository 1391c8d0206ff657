#pragma once

#include "Command.h"

namespace InkoraTool {

/// Reads the command line and runs the command that it names. Help and version are printed where
/// they are asked for, and what is wrong is told on standard error.
/// @return what the command has returned; `usage` where the command line is wrong
ExitStatus runCommandLine(const Command& program, const std::string& version, int argc,
                          const char* const* argv);

}  // namespace InkoraTool
