#include "Checks.h"
#include "Command.h"
#include "pen/RadioOptions.h"
#include "pen/WatchSession.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <memory>

namespace InkoraTool {
namespace {

struct Options {
    RadioOptions radio;
    WatchOptions watch;
    bool json = false;
};

}  // namespace

Command addWatchCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand(
        "watch", "Pairs with a pen and shows its colours as they are captured");
    const auto options = std::make_shared<Options>();
    options->radio.addTo(command);
    command.add_option("--count", options->watch.count, "Ends after so many colours")
        ->type_name("COLOURS")
        ->check(aNumber(1, std::numeric_limits<std::int64_t>::max()));
    command.add_option("--for", options->watch.duration, "Ends after so much time")
        ->type_name("SECONDS")
        ->check(aTime());
    command
        .add_option("--ask-every", options->watch.askEvery,
                    "Asks for battery and proximity again and again, not on connection only")
        ->type_name("SECONDS")
        ->check(aTime());
    command.add_flag("--json", options->json, "Prints a JSON object a line");
    command.footer(
        "A pen that is lost is looked for until it is back. End it with Ctrl-C: it lets go of the\n"
        "pen first. A second Ctrl-C ends it at once.\n");
    return {
        &command, [options] {
            const auto radio = options->radio.install();
            return std::make_shared<WatchSession>(options->watch, makeFormat(options->json))->run();
        }};
}

}  // namespace InkoraTool
