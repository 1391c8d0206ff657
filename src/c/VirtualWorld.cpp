#include <InkoraKit/platform/RunLoop.h>
#include <InkoraKit/virtual/VirtualClock.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include "c/Boundary.h"
#include "c/Start.h"

#include <array>
#include <map>
#include <memory>

// Virtual pens by their serial numbers: a number that is no pen's any more can be refused, a
// pointer could not.
namespace InkoraKit {
namespace {

struct VirtualWorld {
    bool hasClock = false;
    std::shared_ptr<VirtualRadio> radio;
    std::map<std::uint64_t, std::shared_ptr<VirtualPen>> pens;
};

VirtualWorld& world() {
    // Never destroyed: to the kit, which lasts as long, it would be an adapter pulled out.
    static VirtualWorld* const world = new VirtualWorld;
    return *world;
}

void expectNotStarted() {
    if (wasStarted())
        throw Refusal(INKORA_TOO_LATE, "the kit was started with another radio or clock before");
}

VirtualRadio& installedRadio() {
    if (!world().radio) {
        expectNotStarted();
        world().radio = VirtualRadio::install();
    }
    return *world().radio;
}

template <class Work>
inkora_status withPen(std::uint64_t serialNumber, Work work) noexcept {
    return onLoopThread([&] {
        const auto entry = world().pens.find(serialNumber);
        if (entry == world().pens.end())
            throw Refusal(INKORA_NOT_FOUND, "there is no virtual pen of this serial number");
        const auto pen = entry->second;
        work(*pen);
    });
}

}  // namespace
}  // namespace InkoraKit

using namespace InkoraKit;

extern "C" {

inkora_status inkora_virtual_clock_install(void) {
    return onLoopThread([] {
        if (world().hasClock) return;
        expectNotStarted();
        RunLoop::main().setClock(std::make_shared<VirtualClock>());
        world().hasClock = true;
    });
}

inkora_status inkora_virtual_radio_install(void) {
    return onLoopThread([] { installedRadio(); });
}

inkora_status inkora_virtual_radio_set_powered(bool is_on) {
    return onLoopThread([&] {
        if (!world().radio) throw Refusal(INKORA_NOT_FOUND, "there is no virtual radio");
        world().radio->setState(is_on ? CBManagerState::poweredOn : CBManagerState::poweredOff);
    });
}

inkora_status inkora_virtual_pen_add(uint64_t serial_number) {
    return onLoopThread([&] {
        VirtualRadio& radio = installedRadio();
        if (world().pens.contains(serial_number))
            throw Refusal(INKORA_ALREADY_DONE, "a virtual pen of this serial number is there");
        const auto pen = std::make_shared<VirtualPen>(serial_number);
        radio.add(pen);
        world().pens.emplace(serial_number, pen);
    });
}

inkora_status inkora_virtual_pen_remove(uint64_t serial_number) {
    return withPen(serial_number, [&](VirtualPen&) {
        const auto entry = world().pens.extract(serial_number);
        world().radio->remove(entry.mapped());
    });
}

inkora_status inkora_virtual_pen_capture(uint64_t serial_number, uint8_t red, uint8_t green,
                                         uint8_t blue) {
    return withPen(serial_number, [&](VirtualPen& pen) { pen.capture(red, green, blue); });
}

inkora_status inkora_virtual_pen_start_capturing(uint64_t serial_number, double interval,
                                                 uint32_t seed) {
    return withPen(serial_number, [&](VirtualPen& pen) {
        expectWithin(0.001, interval, longestSeconds, "the interval");
        pen.startCapturing(interval, seed);
    });
}

inkora_status inkora_virtual_pen_stop_capturing(uint64_t serial_number) {
    return withPen(serial_number, [](VirtualPen& pen) { pen.stopCapturing(); });
}

inkora_status inkora_virtual_pen_set_battery(uint64_t serial_number, uint8_t percent) {
    return withPen(serial_number, [&](VirtualPen& pen) {
        expectWithin(0, percent, 100, "the battery level");
        pen.setBattery(percent);
    });
}

inkora_status inkora_virtual_pen_set_distance(uint64_t serial_number, int distance) {
    return withPen(serial_number, [&](VirtualPen& pen) {
        constexpr std::array proximities = {VirtualProximity::immediate, VirtualProximity::near,
                                            VirtualProximity::far, VirtualProximity::outOfRange};
        expectWithin(INKORA_DISTANCE_IMMEDIATE, distance, INKORA_DISTANCE_OUT_OF_RANGE,
                     "the distance");
        pen.setProximity(proximities[static_cast<std::size_t>(distance)]);
    });
}

inkora_status inkora_virtual_pen_set_refusing(uint64_t serial_number, bool refuses) {
    return withPen(serial_number, [&](VirtualPen& pen) {
        pen.setConnectAnswer(refuses ? VirtualConnectAnswer::refuse : VirtualConnectAnswer::accept);
    });
}

inkora_status inkora_virtual_pen_drop_link(uint64_t serial_number) {
    return withPen(serial_number, [](VirtualPen& pen) { pen.dropLink(); });
}

inkora_status inkora_virtual_pen_lose_link(uint64_t serial_number) {
    return withPen(serial_number, [](VirtualPen& pen) { pen.loseLink(); });
}
}
