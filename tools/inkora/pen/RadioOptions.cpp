#include "pen/RadioOptions.h"

#include <InkoraKit/virtual/VirtualPen.h>

#include "Checks.h"

#include <CLI/CLI.hpp>

#include <limits>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

constexpr double secondsBetweenColours = 0.5;

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

void RadioOptions::addTo(CLI::App& command) {
    command
        .add_option("--radio", radio_,
                    "system: this machine's Bluetooth adapter; virtual: a pen simulated in this "
                    "process")
        ->type_name("RADIO")
        ->check(CLI::IsMember({"system", "virtual"}))
        ->capture_default_str();
    command.add_option("--seed", seed_, "Decides which colours the virtual pen captures")
        ->type_name("NUMBER")
        ->check(aNumber(0, std::numeric_limits<std::uint32_t>::max()))
        ->capture_default_str();
}

std::shared_ptr<VirtualRadio> RadioOptions::install() const {
    if (radio_ != "virtual") return nullptr;
    auto radio = VirtualRadio::install();
    radio->add(makePen(seed_));
    return radio;
}

}  // namespace InkoraTool
