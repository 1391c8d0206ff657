#include "pen/RadioOptions.h"

#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>

#include "Values.h"
#include "doctor/Cause.h"

#include <cstdio>
#include <limits>
#include <memory>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr double secondsBetweenColours = 0.5;

const std::string replay = "replay:";

std::shared_ptr<VirtualPen> makePen(std::uint32_t seed) {
    auto pen = std::make_shared<VirtualPen>();
    pen->setBattery(87);
    pen->setRSSI(-57);
    // A pen tells the colour it captured last as soon as it is connected.
    pen->capture(0xFF, 0x80, 0x00);
    pen->startCapturing(secondsBetweenColours, seed);
    return pen;
}

}  // namespace

std::vector<Option> RadioOptions::options() {
    return {
        {.name = "--radio",
         .placeholder = "RADIO",
         .help = "Which Bluetooth is used",
         .take = aText(radio_),
         .preset = radio_,
         .choices = {{"system", "this machine's adapter"},
                     {"virtual", "a pen simulated in this process"},
                     {replay + "FILE", "what --record has written, played again"}}},
        {.name = "--seed",
         .placeholder = "NUMBER",
         .help = "Decides which colours the virtual pen captures",
         .take = aNumber(0, std::numeric_limits<std::uint32_t>::max(),
                         [this](std::int64_t seed) { seed_ = static_cast<std::uint32_t>(seed); }),
         .preset = std::to_string(seed_)},
    };
}

std::vector<Flag> RadioOptions::flags() {
    return {
        {"--at-once", "Plays replay:FILE without waiting, not at the recording's pace", &atOnce_}};
}

std::vector<Option> RadioOptions::recordingOptions() {
    return {{.name = "--record",
             .placeholder = "FILE",
             .help = "Writes a trace of what the radio is asked and tells",
             .take = aText(recording_),
             .isFile = true}};
}

std::vector<Flag> RadioOptions::recordingFlags() {
    return {
        {"--with-addresses", "Leaves device addresses in the trace of --record", &withAddresses_}};
}

ExitStatus RadioOptions::run(PenSession& session) const {
    try {
        session.use(install());
    } catch (const NSError& error) {
        std::fprintf(stderr, "inkora: %s\n", error.what());
        return ExitStatus::unreadable;
    }
    const ExitStatus status = session.run();
    if (status == ExitStatus::noBluetooth && radio_ == "system") tellCauseOfNoBluetooth();
    return status;
}

SessionRadio RadioOptions::install() const {
    SessionRadio radio;
    if (radio_ == "virtual") {
        radio.simulated = VirtualRadio::install();
        radio.simulated->add(makePen(seed_));
    } else if (radio_.starts_with(replay)) {
        radio.replayed = ReplayRadio::install(radio_.substr(replay.size()));
        if (atOnce_) RunLoop::main().setClock(std::make_shared<VirtualClock>());
    }
    using enum RadioTrace::Identifiers;
    if (!recording_.empty())
        radio.trace = RadioTrace::record(recording_, withAddresses_ ? full : shortened);
    return radio;
}

}  // namespace InkoraTool
