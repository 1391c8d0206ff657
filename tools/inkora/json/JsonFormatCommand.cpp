#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"

#include <memory>
#include <string>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct FormatOptions {
    std::string file;
    bool isCompact = false;
    bool isSorted = false;
};

ExitStatus format(const FormatOptions& options) {
    using enum JSONSerialization::WritingOptions;
    return printText(jsonText(readJson(options.file), (options.isCompact ? none : prettyPrinted) |
                                                          (options.isSorted ? sortedKeys : none)));
}

}  // namespace

Command jsonFormatCommand() {
    const auto options = std::make_shared<FormatOptions>();
    return {
        .name = "format",
        .help = "Prints a document in another layout",
        .operands = {jsonFile(options->file)},
        .flags = {{"--compact", "Without blanks and line breaks", &options->isCompact},
                  {"--sorted", "Members by key instead of as they come", &options->isSorted}},
        .run = [options] { return format(*options); },
    };
}

}  // namespace InkoraTool
