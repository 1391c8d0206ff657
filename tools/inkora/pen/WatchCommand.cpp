#include "Command.h"
#include "Values.h"
#include "pen/RadioOptions.h"
#include "pen/WatchSession.h"

#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace InkoraTool {
namespace {

constexpr const char* watchFooter =
    R"(A pen that is lost is looked for until it is back. End it with Ctrl-C: it lets go of the
pen first. A second Ctrl-C ends it at once.

A palette that is there already is continued, and a file that is none is left alone: see inkora
palette --help. It is written at the end, and a second after a colour.
)";

struct WatchCommandOptions {
    RadioOptions radio;
    WatchOptions watch;
    bool json = false;
};

}  // namespace

Command watchCommand() {
    const auto options = std::make_shared<WatchCommandOptions>();
    WatchOptions& watch = options->watch;
    std::vector<Option> all = options->radio.options();
    all.insert(all.end(),
               {{"--count", "COLOURS", "Ends after so many colours",
                 aNumber(1, std::numeric_limits<std::int64_t>::max(),
                         [&watch](std::int64_t count) { watch.count = count; })},
                {"--for", "SECONDS", "Ends after so much time", aTime(watch.duration)},
                {"--ask-every", "SECONDS",
                 "Asks for battery and proximity again and again, not on connection only",
                 aTime(watch.askEvery)},
                {.name = "--palette",
                 .placeholder = "FILE",
                 .help = "Adds the colours to a palette: .json, .gpl, .ase, .css, .svg or .html",
                 .take = aText(watch.palette),
                 .isFile = true}});
    for (Option& option : options->radio.recordingOptions()) all.push_back(std::move(option));
    std::vector<Flag> flags = options->radio.flags();
    for (Flag& flag : options->radio.recordingFlags()) flags.push_back(std::move(flag));
    flags.push_back({"--json", "Prints a JSON object a line", &options->json});
    return {
        .name = "watch",
        .help = "Pairs with a pen and shows its colours as they are captured",
        .options = std::move(all),
        .flags = std::move(flags),
        .footer = watchFooter,
        .run =
            [options] {
                const auto session =
                    std::make_shared<WatchSession>(options->watch, makeFormat(options->json));
                const ExitStatus status = options->radio.run(*session);
                session->savePalette();
                return status;
            },
    };
}

}  // namespace InkoraTool
