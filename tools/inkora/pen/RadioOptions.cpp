#include "pen/RadioOptions.h"

#include <InkoraKit/virtual/VirtualPen.h>

#include "Values.h"

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

std::vector<Option> RadioOptions::options() {
    return {
        {.name = "--radio",
         .placeholder = "RADIO",
         .help =
             "system: this machine's Bluetooth adapter; virtual: a pen simulated in this process",
         .take = aText(radio_),
         .preset = radio_,
         .choices = {"system", "virtual"}},
        {.name = "--seed",
         .placeholder = "NUMBER",
         .help = "Decides which colours the virtual pen captures",
         .take = aNumber(0, std::numeric_limits<std::uint32_t>::max(),
                         [this](std::int64_t seed) { seed_ = static_cast<std::uint32_t>(seed); }),
         .preset = std::to_string(seed_)},
    };
}

std::shared_ptr<VirtualRadio> RadioOptions::install() const {
    if (radio_ != "virtual") return nullptr;
    auto radio = VirtualRadio::install();
    radio->add(makePen(seed_));
    return radio;
}

}  // namespace InkoraTool
