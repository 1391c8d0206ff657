#include "json/JsonCommands.h"
#include "json/JsonFailure.h"
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
    std::string other;
};

ExitStatus merge(const Options& options) {
    if (options.file == standardInput && options.other == standardInput)
        throw JsonFailure(ExitStatus::usage, "only one of the two can be standard input");
    JSON document = readJson(options.file);
    try {
        document.merge(readJson(options.other));
    } catch (const NSError& error) {
        throw JsonFailure(ExitStatus::notMergeable, error.localizedDescription());
    }
    return printText(jsonText(document));
}

}  // namespace

Command addJsonMergeCommand(CLI::App& json) {
    CLI::App& command = *json.add_subcommand("merge", "Prints a document merged with another");
    const auto options = std::make_shared<Options>();
    command.add_option("FILE", options->file, "The document; - is standard input")
        ->option_text(" ")
        ->required();
    command.add_option("OTHER", options->other, "What it is merged with; - is standard input")
        ->option_text(" ")
        ->required();
    command.footer(
        "Members of dictionaries are merged deeply, arrays are joined, and anything else is "
        "replaced.\n");
    return {&command, [options] { return merge(*options); }};
}

}  // namespace InkoraTool
