#include "doctor/Examination.h"

#include "doctor/bluez/Checks.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace InkoraTool {
namespace {

struct Check {
    std::array<std::string_view, 2> names;  // of its findings; the second may be empty
    Findings (*look)(Machine& machine);
    ExitStatus meaning;  // of a fault
};

constexpr std::array<Check, 8> checks = {{
    {{named::bus}, lookAtBus, ExitStatus::noBluetooth},
    {{named::bluetoothd}, lookAtBluetoothd, ExitStatus::noBluetooth},
    {{named::permission, named::answer}, lookAtAnswer, ExitStatus::noBluetooth},
    {{named::adapter}, lookAtAdapters, ExitStatus::noBluetooth},
    {{named::signalStrength}, lookAtSignalStrength, ExitStatus::success},
    {{named::otherPrograms}, lookAtOtherPrograms, ExitStatus::notConnected},
    {{named::pens}, listenForPens, ExitStatus::noPen},
    {{named::connection, named::firstValue}, tryAPen, ExitStatus::notConnected},
}};

bool isFault(const Finding& finding) {
    return finding.state == Finding::State::fault;
}

void tellNotLookedAt(const Check& check, const Findings& findings,
                     const std::function<void(const Finding&)>& tell) {
    for (const std::string_view name : check.names)
        if (!name.empty() && std::ranges::find(findings, name, &Finding::name) == findings.end())
            tell({std::string(name), Finding::State::notLookedAt});
}

}  // namespace

ExitStatus examine(const Waiting& waiting, double listening,
                   const std::function<void(const Finding&)>& tell) {
    Machine machine{.waiting = waiting, .patience = 3, .listening = listening};
    ExitStatus status = ExitStatus::success;
    for (const Check& check : checks) {
        Findings findings;
        if (status == ExitStatus::success) {
            try {
                machine.meaning = check.meaning;
                findings = check.look(machine);
                if (std::ranges::any_of(findings, isFault)) status = machine.meaning;
            } catch (const Interrupted&) {
                status = ExitStatus::interrupted;
            }
        }
        for (const Finding& finding : findings) tell(finding);
        tellNotLookedAt(check, findings, tell);
    }
    return status;
}

std::optional<Finding> findFaultOfBluetooth() {
    const Waiting waiting;
    Machine machine{.waiting = waiting, .patience = 1, .listening = 0};
    for (const Check& check : checks) {
        if (check.meaning != ExitStatus::noBluetooth) break;
        const Findings findings = check.look(machine);
        const auto fault = std::ranges::find_if(findings, isFault);
        if (fault != findings.end()) return *fault;
    }
    return std::nullopt;
}

}  // namespace InkoraTool
