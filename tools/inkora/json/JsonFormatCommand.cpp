#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct Options {
    std::string file;
    bool isCompact = false;
    bool isSorted = false;
};

ExitStatus format(const Options& options) {
    using enum JSONSerialization::WritingOptions;
    return printText(jsonText(readJson(options.file), (options.isCompact ? none : prettyPrinted) |
                                                          (options.isSorted ? sortedKeys : none)));
}

}  // namespace

Command addJsonFormatCommand(CLI::App& json) {
    CLI::App& command = *json.add_subcommand("format", "Prints a document in another layout");
    const auto options = std::make_shared<Options>();
    command.add_option("FILE", options->file, "The document; - is standard input")
        ->option_text(" ")
        ->required();
    command.add_flag("--compact", options->isCompact, "Without blanks and line breaks");
    command.add_flag("--sorted", options->isSorted, "Members by key instead of as they come");
    return {&command, [options] { return format(*options); }};
}

}  // namespace InkoraTool
