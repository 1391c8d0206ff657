#include "json/JsonCommands.h"
#include "json/JsonFailure.h"

#include <cstdio>
#include <functional>
#include <new>

namespace InkoraTool {
namespace {

constexpr const char* jsonFooter =
    R"(FILE may be - for standard input. What is printed is UTF-8, whatever the file was in.

Exit status:
   0  done
   1  the result cannot be written
   2  the command line is wrong
   3  a file cannot be read
   4  a text is no JSON
   5  the path leads nowhere, or to no place that can be written
   6  the two documents are of different types and cannot be merged
)";

ExitStatus failed(const char* message, ExitStatus status) {
    std::fprintf(stderr, "inkora: %s\n", message);
    return status;
}

ExitStatus runAndTellFailure(const std::function<ExitStatus()>& run) {
    try {
        return run();
    } catch (const JsonFailure& failure) {
        return failed(failure.what(), failure.status);
    } catch (const std::bad_alloc&) {
        return failed("there is not enough memory", ExitStatus::failure);
    }
}

}  // namespace

Command jsonCommand() {
    Command json = {
        .name = "json",
        .help = "Reads, changes and prints JSON documents",
        .footer = jsonFooter,
        .commands = {jsonGetCommand(), jsonSetCommand(), jsonMergeCommand(), jsonFormatCommand()},
    };
    for (Command& command : json.commands)
        command.run = [run = command.run] { return runAndTellFailure(run); };
    return json;
}

}  // namespace InkoraTool
