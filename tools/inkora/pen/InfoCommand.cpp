#include "Command.h"
#include "pen/InfoSession.h"
#include "pen/RadioOptions.h"

#include <memory>

namespace InkoraTool {
namespace {

struct InfoCommandOptions {
    RadioOptions radio;
    bool json = false;
};

}  // namespace

Command infoCommand() {
    const auto options = std::make_shared<InfoCommandOptions>();
    return {
        .name = "info",
        .help = "Asks a pen for its name, identifier, battery and proximity, and ends",
        .options = options->radio.options(),
        .flags = {{"--json", "Prints one JSON object", &options->json}},
        .footer = "What is not answered within 5 seconds is shown as not available (JSON: null).\n",
        .run =
            [options] {
                const auto radio = options->radio.install();
                return std::make_shared<InfoSession>(makeFormat(options->json))->run();
            },
    };
}

}  // namespace InkoraTool
