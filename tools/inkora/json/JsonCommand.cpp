#include "json/JsonCommands.h"

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

}  // namespace

Operand jsonFile(std::string& file) {
    return {
        .name = "FILE", .help = "The document; - is standard input", .into = &file, .isFile = true};
}

Command jsonCommand() {
    return {
        .name = "json",
        .help = "Reads, changes and prints JSON documents",
        .footer = jsonFooter,
        .commands = {jsonGetCommand(), jsonSetCommand(), jsonMergeCommand(), jsonFormatCommand()},
    };
}

}  // namespace InkoraTool
