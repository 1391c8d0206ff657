#include "Failure.h"
#include "File.h"
#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"
#include "terminal/Output.h"

#include <memory>
#include <string>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct MergeOptions {
    std::string file;
    std::string other;
};

ExitStatus merge(const MergeOptions& options) {
    if (options.file == standardInput && options.other == standardInput)
        throw Failure(ExitStatus::usage, "only one of the two can be standard input");
    JSON document = readJson(options.file);
    try {
        document.merge(readJson(options.other));
    } catch (const NSError& error) {
        throw Failure(ExitStatus::notMergeable, error.localizedDescription());
    }
    printText(jsonText(document));
    return ExitStatus::success;
}

}  // namespace

Command jsonMergeCommand() {
    const auto options = std::make_shared<MergeOptions>();
    return {
        .name = "merge",
        .help = "Prints a document merged with another",
        .operands = {jsonFile(options->file),
                     {.name = "OTHER",
                      .help = "What it is merged with; - is standard input",
                      .into = &options->other,
                      .isFile = true}},
        .footer =
            "Members of dictionaries are merged deeply, arrays are joined, and anything else is "
            "replaced.\n",
        .run = [options] { return merge(*options); },
    };
}

}  // namespace InkoraTool
