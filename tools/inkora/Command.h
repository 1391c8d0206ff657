#pragma once

#include "ExitStatus.h"

#include <functional>

namespace CLI {
class App;
}

namespace InkoraTool {

/// A subcommand: what it understands, and what it does once its options are read. A further one is
/// a function like those below, in a file of its own, and a line in main().
struct Command {
    CLI::App* options;
    std::function<ExitStatus()> run;
};

Command addWatchCommand(CLI::App& program);
Command addInfoCommand(CLI::App& program);
Command addJsonCommand(CLI::App& program);

}  // namespace InkoraTool
