#include "json/JsonCommands.h"
#include "json/JsonInput.h"
#include "json/JsonOutput.h"
#include "json/JsonSteps.h"

#include <memory>
#include <string>
#include <vector>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr const char* getFooter =
    R"(In an array a step of digits is a position, from 0. Keys that start with - go behind --.
Without a path it is the whole document that is printed.
)";

struct GetOptions {
    std::string file;
    std::vector<std::string> steps;
    bool isRaw = false;
};

ExitStatus get(const GetOptions& options) {
    const JSON document = readJson(options.file);
    const JSON value = document[pathIn(document, options.steps, LastStep::isThere)];
    return printText(options.isRaw && value.type() == Type::string ? value.stringValue()
                                                                   : jsonText(value));
}

}  // namespace

Command jsonGetCommand() {
    const auto options = std::make_shared<GetOptions>();
    return {
        .name = "get",
        .help = "Prints the value at a path",
        .operands = {jsonFile(options->file),
                     {"PATH", "A key or a position for each step", &options->steps, false}},
        .flags = {{"--raw", "Prints a text as it is, without quotes and escapes", &options->isRaw}},
        .footer = getFooter,
        .run = [options] { return get(*options); },
    };
}

}  // namespace InkoraTool
