#include "Command.h"
#include "pen/InfoSession.h"
#include "pen/RadioOptions.h"

#include <memory>
#include <utility>
#include <vector>

namespace InkoraTool {
namespace {

struct InfoCommandOptions {
    RadioOptions radio;
    bool json = false;
};

}  // namespace

Command infoCommand() {
    const auto options = std::make_shared<InfoCommandOptions>();
    std::vector<Flag> flags = options->radio.flags();
    flags.push_back({"--json", "Prints one JSON object", &options->json});
    return {
        .name = "info",
        .help = "Asks a pen for its name, identifier, battery and proximity, and ends",
        .options = options->radio.options(),
        .flags = std::move(flags),
        .footer = "What is not answered within 5 seconds is shown as not available (JSON: null).\n",
        .run =
            [options] {
                return options->radio.run(
                    *std::make_shared<InfoSession>(makeFormat(options->json)));
            },
    };
}

}  // namespace InkoraTool
