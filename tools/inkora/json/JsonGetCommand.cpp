#include "json/JsonCommands.h"
#include "json/JsonDocuments.h"
#include "json/JsonOutput.h"
#include "json/JsonSteps.h"

#include <memory>
#include <string>
#include <vector>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* getFooter =
    R"(In an array a step of digits is a position, from 0, or from the end, from -1. Keys that start with
- go behind --. Without a path it is the whole document that is printed.

Of JSON Lines each value is printed on one line, and nothing where the path leads nowhere: only where
none of the lines has such a value that is a failure.
)";

struct GetOptions {
    std::string file;
    std::vector<std::string> steps;
    bool areLines = false;
    bool isRaw = false;
};

ExitStatus get(const GetOptions& options) {
    using enum JSONSerialization::WritingOptions;
    return printDocuments(
        options.file, options.areLines, [&options](const JSON& document, bool isLine) {
            const JSON value = document[pathIn(document, options.steps, LastStep::isThere)];
            if (options.isRaw && value.type() == Type::string) return value.stringValue();
            return jsonText(value, isLine ? none : prettyPrinted);
        });
}

}  // namespace

Command jsonGetCommand() {
    const auto options = std::make_shared<GetOptions>();
    return {
        .name = "get",
        .help = "Prints the value at a path",
        .operands = {jsonFile(options->file),
                     {"PATH", "A key or a position for each step", &options->steps, false}},
        .flags = {jsonLines(options->areLines),
                  {"--raw", "Prints a text as it is, without quotes and escapes", &options->isRaw}},
        .footer = getFooter,
        .run = [options] { return get(*options); },
    };
}

}  // namespace InkoraTool
