#include "Command.h"
#include "Values.h"
#include "doctor/Examination.h"
#include "doctor/Report.h"
#include "terminal/Output.h"
#include "terminal/SignalSource.h"

#include <InkoraKit/InkoraConstants.h>

#include <memory>
#include <string>

namespace InkoraTool {
namespace {

struct DoctorOptions {
    std::optional<double> listening;
    bool json = false;
};

ExitStatus run(const DoctorOptions& options) {
    Waiting waiting;
    const SignalSource signals([&waiting] { waiting.interrupt(); });
    Findings findings;
    // Who does not read all of it, as in `inkora doctor | grep -q fault`, still asks for the
    // status.
    const ExitStatus status =
        examine(waiting, options.listening.value_or(InkoraKit::InkoraConstants::BluetoothTimeout),
                [&](const Finding& finding) {
                    findings.push_back(finding);
                    if (!options.json && finding.state != Finding::State::notLookedAt)
                        printText(textOf(finding));
                });
    printText(options.json ? jsonOf(findings) : '\n' + summaryOf(findings));
    return status;
}

}  // namespace

Command doctorCommand() {
    const auto options = std::make_shared<DoctorOptions>();
    return {
        .name = "doctor",
        .help = "Says what stands between this machine and a pen, and what to do about it",
        .options = {{"--for", "SECONDS", "Listens so long for what is in the air",
                     aTime(options->listening), "6"}},
        .flags = {{"--json", "Prints one JSON object", &options->json}},
        .footer =
            R"(Nothing on the machine is changed, and root is not needed. Where all is well a pen is
connected, asked for a value, and let go of.

Exit status:
   0  a pen was connected and has told a value
  17  Bluetooth is off, missing or not permitted
  18  a pen is there, but could not be connected, has told nothing, or another program has it
  19  no pen was heard
 130  it was interrupted
)",
        .run = [options] { return run(*options); },
    };
}

}  // namespace InkoraTool
