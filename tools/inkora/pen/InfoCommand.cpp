#include "Command.h"
#include "pen/InfoSession.h"
#include "pen/RadioOptions.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace InkoraTool {
namespace {

struct Options {
    RadioOptions radio;
    bool json = false;
};

}  // namespace

Command addInfoCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand(
        "info", "Asks a pen for its name, identifier, battery and proximity, and ends");
    const auto options = std::make_shared<Options>();
    options->radio.addTo(command);
    command.add_flag("--json", options->json, "Prints one JSON object");
    command.footer(
        "What is not answered within 5 seconds is shown as not available (JSON: null).\n");
    return {&command, [options] {
                const auto radio = options->radio.install();
                return std::make_shared<InfoSession>(makeFormat(options->json))->run();
            }};
}

}  // namespace InkoraTool
