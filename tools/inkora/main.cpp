#include "CommandLine.h"
#include "Failure.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

using namespace InkoraTool;

namespace {

constexpr const char* footer = R"(Examples:
  inkora watch                           colours of the first pen found, until Ctrl-C
  inkora watch --count 5 --json          five colours, for a program to read
  inkora watch --for 60 --ask-every 10   a minute, with battery and proximity every 10 s
  inkora doctor                          what is amiss where no pen is found
  inkora info                            name, identifier, battery, proximity
  inkora watch --radio virtual           no Bluetooth and no pen needed
  inkora watch --palette desk.html       keeps the colours in a page, .json, .gpl, .ase, .css, .svg
  inkora palette desk.html desk.gpl      the same palette for GIMP
  inkora watch --record t.jsonl          and later: --radio replay:t.jsonl
  inkora json get settings.json scan 0   a value in a JSON document

Exit status:
   0  done: --count or --for was reached, or ended by Ctrl-C, SIGTERM or SIGHUP
   1  the output cannot be written, or a replay has parted from its trace
   2  the command line is wrong
   3  a file cannot be read, or a trace not be written
 3-6  json, a palette or a pen's script: see inkora json --help, inkora palette --help
  17  Bluetooth is off, missing or not permitted
  18  a pen was found but could not be connected
  19  no pen was found within 6 seconds, or the time of --for
 130  info or doctor was interrupted before it had an answer
)";

int failed(const char* message, ExitStatus status) {
    std::fprintf(stderr, "inkora: %s\n", message);
    return static_cast<int>(status);
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that goes away is seen by the write that fails, and the pen is let go of.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const Command program = {
            .name = "inkora",
            .help = "Talks to a colour-capturing pen over Bluetooth LE.",
            .footer = footer,
            .commands = {watchCommand(), infoCommand(), penCommand(), jsonCommand(),
                         paletteCommand(), doctorCommand()},
        };
        return static_cast<int>(runCommandLine(program, "inkora " INKORA_VERSION, argc, argv));
    } catch (const Failure& failure) {
        return failed(failure.what(), failure.status);
    } catch (const std::bad_alloc&) {
        return failed("there is not enough memory", ExitStatus::failure);
    } catch (const std::exception& error) {
        return failed(error.what(), ExitStatus::failure);
    }
}
