#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOperands.h"
#include "json/JsonOutput.h"
#include "json/JsonSteps.h"

#include <CLI/CLI.hpp>

#include <memory>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct Options {
    std::string file;
    std::vector<std::string> steps;
    bool isRaw = false;
};

ExitStatus get(const Options& options) {
    const JSON document = readJson(options.file);
    const JSON value = document[pathIn(document, options.steps, LastStep::isThere)];
    return printText(options.isRaw && value.type() == Type::string ? value.stringValue()
                                                                   : jsonText(value));
}

}  // namespace

Command addJsonGetCommand(CLI::App& json) {
    CLI::App& command = *json.add_subcommand("get", "Prints the value at a path");
    const auto options = std::make_shared<Options>();
    command.add_option("FILE", options->file, "The document; - is standard input")
        ->option_text(" ")
        ->required();
    addJsonOperands(command, "PATH", "A key or a position for each step",
                    [options](auto steps) { options->steps = std::move(steps); });
    command.add_flag("--raw", options->isRaw, "Prints a text as it is, without quotes and escapes");
    command.footer(
        "In an array a step of digits is a position, from 0. Keys that start with - go behind --.\n"
        "Without a path it is the whole document that is printed.\n");
    return {&command, [options] { return get(*options); }};
}

}  // namespace InkoraTool
