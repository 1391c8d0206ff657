#include "CommandLine.h"

#include <csignal>
#include <cstdio>
#include <exception>

using namespace InkoraTool;

namespace {

constexpr const char* footer = R"(Examples:
  inkora watch                           colours of the first pen found, until Ctrl-C
  inkora watch --count 5 --json          five colours, for a program to read
  inkora watch --for 60 --ask-every 10   a minute, with battery and proximity every 10 s
  inkora info                            name, identifier, battery, proximity
  inkora watch --radio virtual           no Bluetooth and no pen needed
  inkora watch --record t.jsonl          and later: --radio replay:t.jsonl
  inkora json get settings.json scan 0   a value in a JSON document

Exit status:
   0  done: --count or --for was reached, or ended by Ctrl-C, SIGTERM or SIGHUP
   1  the output cannot be written, or a replay has parted from its trace
   2  the command line is wrong
   3  a trace cannot be read or written
 3-6  json could not do what it was asked: see inkora json --help
  17  Bluetooth is off, missing or not permitted
  18  a pen was found but could not be connected
  19  no pen was found within 6 seconds, or the time of --for
 130  info was interrupted before it had an answer
)";

}  // namespace

int main(int argc, char** argv) {
    // A reader that goes away is seen by the write that fails, and the pen is let go of.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const Command program = {
            .name = "inkora",
            .help = "Talks to a colour-capturing pen over Bluetooth LE.",
            .footer = footer,
            .commands = {watchCommand(), infoCommand(), jsonCommand()},
        };
        return static_cast<int>(runCommandLine(program, "inkora " INKORA_VERSION, argc, argv));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "inkora: %s\n", error.what());
        return static_cast<int>(ExitStatus::failure);
    }
}
