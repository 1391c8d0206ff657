#include "json/JsonCommands.h"
#include "json/JsonDocuments.h"
#include "json/JsonOutput.h"

#include <memory>
#include <string>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct FormatOptions {
    std::string file;
    bool areLines = false;
    bool isCompact = false;
    bool isSorted = false;
};

ExitStatus format(const FormatOptions& options) {
    using enum JSONSerialization::WritingOptions;
    const auto layout =
        (options.isCompact ? none : prettyPrinted) | (options.isSorted ? sortedKeys : none);
    return printDocuments(options.file, options.areLines, [layout](const JSON& document, bool) {
        return jsonText(document, layout);
    });
}

}  // namespace

Command jsonFormatCommand() {
    const auto options = std::make_shared<FormatOptions>();
    return {
        .name = "format",
        .help = "Prints a document in another layout",
        .operands = {jsonFile(options->file)},
        .flags = {jsonLines(options->areLines),
                  {"--compact", "Without blanks and line breaks", &options->isCompact},
                  {"--sorted", "Members by key instead of as they come", &options->isSorted}},
        .run = [options] { return format(*options); },
    };
}

}  // namespace InkoraTool
