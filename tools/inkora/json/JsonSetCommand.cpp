#include "json/JsonCommands.h"
#include "json/JsonFailure.h"
#include "json/JsonFile.h"
#include "json/JsonInput.h"
#include "json/JsonOperands.h"
#include "json/JsonOutput.h"
#include "json/JsonSteps.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

struct Options {
    std::string file;
    std::vector<std::string> steps;
    std::string value;
    bool isText = false;
    bool isInPlace = false;
};

/// JSON cannot hold any other text, and would have null in its place.
void requireUtf8(const std::string& argument) {
    if (Any(argument).kind() == Any::Kind::object)
        throw JsonFailure(ExitStatus::usage, "an argument is not UTF-8");
}

JSON valueFrom(const Options& options) {
    if (options.isText) return options.value;
    try {
        return JSONSerialization::jsonObject(options.value,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError&) {
        return options.value;
    }
}

ExitStatus set(const Options& options) {
    if (options.isInPlace && options.file == standardInput)
        throw JsonFailure(ExitStatus::usage, "standard input cannot be changed in place");
    std::ranges::for_each(options.steps, requireUtf8);
    requireUtf8(options.value);
    JSON document = readJson(options.file);
    document[pathIn(document, options.steps, LastStep::mayBeAdded)] = valueFrom(options);
    std::string text = jsonText(document);
    if (!options.isInPlace) return printText(text);
    text += '\n';
    replaceFile(options.file, text);
    return ExitStatus::success;
}

}  // namespace

Command addJsonSetCommand(CLI::App& json) {
    CLI::App& command = *json.add_subcommand("set", "Prints a document with one value changed");
    const auto options = std::make_shared<Options>();
    command.add_option("FILE", options->file, "The document; - is standard input")
        ->option_text(" ")
        ->required();
    // The last of what follows the file is the value.
    CLI::Option* const path = addJsonOperands(
        command, "PATH", "A key or a position for each step", [&command, options](auto operands) {
            if (operands.size() < 2) return;
            command.get_option("VALUE")->add_result(operands.back());
            operands.pop_back();
            options->steps = std::move(operands);
        });
    CLI::Option* const value =
        command.add_option("VALUE", options->value, "JSON text; what is none is taken as a text")
            ->option_text(" ");
    path->required();
    value->required();
    command.add_flag("--string", options->isText, "Takes VALUE as a text even if it is JSON");
    command.add_flag("--in-place", options->isInPlace,
                     "Writes to the file, which is replaced at once or stays as it is, and prints "
                     "nothing");
    command.footer(
        "A key that is not there is added. All steps before the last one have to be there, and so "
        "have\npositions in arrays. What starts with - goes behind --, but for numbers.\n");
    return {&command, [options] { return set(*options); }};
}

}  // namespace InkoraTool
