#include "doctor/Examination.h"

#if !defined(INKORA_WITH_BLUEZ)

namespace InkoraTool {
namespace {

const Finding noRadio = {
    .name = "this build",
    .state = Finding::State::fault,
    .text = "has no Bluetooth, but virtual pens and traces alone",
    .advice = "On Linux, build it where the development files of libsystemd are found.",
};

}  // namespace

ExitStatus examine(const Waiting&, double, const std::function<void(const Finding&)>& tell) {
    tell(noRadio);
    return ExitStatus::noBluetooth;
}

std::optional<Finding> findFaultOfBluetooth() {
    return noRadio;
}

}  // namespace InkoraTool

#endif
