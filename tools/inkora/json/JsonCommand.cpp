#include "json/JsonCommands.h"
#include "json/JsonFailure.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>

namespace InkoraTool {
namespace {

constexpr const char* footer =
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

ExitStatus runCommand(const Command& command) {
    try {
        return command.run();
    } catch (const JsonFailure& failure) {
        return failed(failure.what(), failure.status);
    } catch (const std::bad_alloc&) {
        return failed("there is not enough memory", ExitStatus::failure);
    }
}

}  // namespace

Command addJsonCommand(CLI::App& program) {
    CLI::App& json = *program.add_subcommand("json", "Reads, changes and prints JSON documents");
    json.footer(footer);
    json.require_subcommand(1);
    const std::array commands = {addJsonGetCommand(json), addJsonSetCommand(json),
                                 addJsonMergeCommand(json), addJsonFormatCommand(json)};
    return {&json, [commands] {
                return runCommand(*std::ranges::find_if(
                    commands, [](const Command& command) { return command.options->parsed(); }));
            }};
}

}  // namespace InkoraTool
