#include "Failure.h"
#include "File.h"
#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"
#include "json/JsonSteps.h"
#include "terminal/Output.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* setFooter =
    R"(A key that is not there is added. All steps before the last one have to be there, and so have
positions in arrays, which can be counted from the end, from -1. What starts with - goes behind --,
but for numbers.
)";

struct SetOptions {
    std::string file;
    std::vector<std::string> steps;
    std::string value;
    bool isText = false;
    bool isInPlace = false;
};

/// JSON cannot hold any other text, and would have null in its place.
void requireUtf8(const std::string& argument) {
    if (Any(argument).kind() == Any::Kind::object)
        throw Failure(ExitStatus::usage, "an argument is not UTF-8");
}

JSON valueFrom(const SetOptions& options) {
    if (options.isText) return options.value;
    try {
        return JSONSerialization::jsonObject(options.value,
                                             JSONSerialization::ReadingOptions::allowFragments);
    } catch (const NSError&) {
        return options.value;
    }
}

ExitStatus set(const SetOptions& options) {
    if (options.isInPlace && options.file == standardInput)
        throw Failure(ExitStatus::usage, "standard input cannot be changed in place");
    std::ranges::for_each(options.steps, requireUtf8);
    requireUtf8(options.value);
    JSON document = readJson(options.file);
    document[pathIn(document, options.steps, LastStep::mayBeAdded)] = valueFrom(options);
    const std::string text = jsonText(document);
    if (options.isInPlace) {
        replaceFile(options.file, text + '\n');
    } else {
        printText(text);
    }
    return ExitStatus::success;
}

}  // namespace

Command jsonSetCommand() {
    const auto options = std::make_shared<SetOptions>();
    return {
        .name = "set",
        .help = "Prints a document with one value changed",
        .operands = {jsonFile(options->file),
                     {"PATH", "A key or a position for each step", &options->steps},
                     {"VALUE", "JSON text; what is none is taken as a text", &options->value}},
        .flags = {{"--string", "Takes VALUE as a text even if it is JSON", &options->isText},
                  {"--in-place",
                   "Writes to the file, which is replaced at once or stays as it is, and prints "
                   "nothing",
                   &options->isInPlace}},
        .footer = setFooter,
        .run = [options] { return set(*options); },
    };
}

}  // namespace InkoraTool
