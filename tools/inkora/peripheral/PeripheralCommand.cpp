#include "Command.h"
#include "Failure.h"
#include "File.h"
#include "Values.h"
#include "doctor/Cause.h"
#include "peripheral/PeripheralOptions.h"
#ifdef INKORA_WITH_BLUEZ
#include "peripheral/bluez/PeripheralSession.h"
#endif

#include <limits>
#include <memory>
#include <utility>

namespace InkoraTool {
namespace {

constexpr const char* penFooter =
    R"(Lines of standard input tell the pen what to do:
  #FF8000, orange or random   captures that colour, of which the web's names are known
  random 500                  a burst of so many colours
  random 20 0.5               so many, half a second apart
  battery 42                  the battery's charge in percent
  name InkoraPen 2            another name
  drop                        ends the link
  silent, answer              leaves what hosts ask without an answer; answers again
  hide, show                  stops and starts to advertise
  raw 01FF80                  any bytes in place of a colour; none, too
  quit                        ends the pen, as Ctrl-C does
A script has the same lines with a time before each, in seconds from when the pen
advertises first: 2.5 drop. One with a wrong line is refused, with status 4. The end of the input
does not end the pen.

A host finds it as a pen, while it has no link. The adapter has the pen's name meanwhile, and its own
one again afterwards. When bluetoothd ends or the adapter goes, the pen is back as soon as they are.
)";

struct PeripheralCommandOptions {
    PeripheralOptions pen;
    std::string script;
};

Take aPenName(std::string& name) {
    return [&name](const std::string& text) {
        name = text;
        return faultOfPenName(text);
    };
}

ExitStatus runPen(PeripheralCommandOptions& options) {
    if (!options.script.empty()) options.pen.script = readPenScript(options.script);
    options.pen.readsInput = options.script != standardInput;
#ifdef INKORA_WITH_BLUEZ
    const ExitStatus status = std::make_shared<PeripheralSession>(options.pen)->run();
    if (status == ExitStatus::noBluetooth) tellCauseOfNoBluetooth();
    return status;
#else
    throw Failure(ExitStatus::noBluetooth, "this build has nothing of the system's Bluetooth");
#endif
}

}  // namespace

Command penCommand() {
    const auto options = std::make_shared<PeripheralCommandOptions>();
    PeripheralOptions& pen = options->pen;
    return {
        .name = "pen",
        .help = "Is a pen, over the air: this machine advertises as one, by Linux's bluetoothd",
        .options = {{"--name", "NAME", "What the pen is called", aPenName(pen.name), pen.name},
                    {"--battery", "PERCENT", "Its battery's charge",
                     aNumber(0, 100,
                             [&pen](std::int64_t percent) {
                                 pen.battery = static_cast<std::uint8_t>(percent);
                             }),
                     std::to_string(pen.battery)},
                    {"--adapter", "ADAPTER", "As hci1; otherwise the first that can be a pen",
                     aText(pen.adapter)},
                    {.name = "--script",
                     .placeholder = "FILE",
                     .help = "What the pen does, and when",
                     .take = aText(options->script),
                     .isFile = true},
                    {"--seed", "NUMBER", "Decides which colours are captured at random",
                     aNumber(0, std::numeric_limits<std::uint32_t>::max(),
                             [&pen](std::int64_t seed) {
                                 pen.seed = static_cast<std::uint32_t>(seed);
                             }),
                     std::to_string(pen.seed)},
                    {"--count", "COLOURS", "Ends after so many colours",
                     aNumber(1, std::numeric_limits<std::int64_t>::max(),
                             [&pen](std::int64_t count) { pen.count = count; })},
                    {"--for", "SECONDS", "Ends after so much time", aTime(pen.duration)}},
        .flags = {{"--json", "Prints a JSON object a line", &pen.json}},
        .footer = penFooter,
        .run = [options] { return runPen(*options); },
    };
}

}  // namespace InkoraTool
