#include "json/JsonCommands.h"

namespace InkoraTool {
namespace {

constexpr const char* jsonFooter =
    R"(FILE may be - for standard input. What is printed is UTF-8, whatever the file was in.

get and format take JSON Lines too: where the first line is a document by itself and others follow, each
line is one, and what is printed for it comes at once. A line that is none is told on standard error;
the others are read nevertheless. A document may span lines, but then it is the only one.

Exit status:
   0  done
   1  the result cannot be written
   2  the command line is wrong
   3  a file cannot be read
   4  a text, or one of the lines, is no JSON
   5  the path leads nowhere, in none of the lines, or to no place that can be written
   6  the two documents are of different types and cannot be merged
)";

}  // namespace

Operand jsonFile(std::string& file) {
    return {
        .name = "FILE", .help = "The document; - is standard input", .into = &file, .isFile = true};
}

Flag jsonLines(bool& areLines) {
    return {"--lines",
            "Takes each line as a document, also if the first one is none or the only one",
            &areLines};
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
