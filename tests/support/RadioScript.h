#pragma once

#include "support/Script.h"
#include "support/ScriptedRadio.h"
#include "support/Transcript.h"

#include <array>
#include <set>

namespace InkoraKit {

/// A script of radio events, and of what a derived class adds to them. The words, with n for a
/// device from 0 to 2:
///
///     adapter n                 the adapter's state becomes n (0 to 5)
///     sight n NAME              device n advertises NAME; none without one
///     advertise n KEY VALUE…    the same with more: name, own, rssi, services, maker, data, power,
///                               connectable, and again, for a report although it had one
///     connected n   failed n   lost n   gone n       what becomes of device n's link
///     services n HANDLES        discovery finds these on device n: 1, 11 and 5 are the pen's
///     characteristics n m HANDLES   the same in service m: 2 and 12 are colours, 3 battery
///     invalidated n HANDLES     of services that changed
///     read n HANDLE HEX         an answer; no HEX: no bytes, "-": no value
///     notify n HANDLE HEX
///     subscribed n HANDLE       confirmed; "off": ended
///     rssi n STRENGTH
///     name n NAME               the device's own name
///
/// "!" in place of what is found, read or confirmed is a failure. Each command that the radio is
/// given, such as radio-scan, is an event that a line can be played inside of.
class RadioScript : public Script {
public:
    RadioScript();
    ~RadioScript() override;

protected:
    static constexpr const char* nilFound =
        "unexpectedly found nil while unwrapping an Optional value";
    static constexpr const char* outOfRange = "Index out of range";

    std::string happened() override { return transcript.take(); }

    const UUID& device() { return devices[static_cast<unsigned>(number()) % devices.size()]; }

    Transcript transcript;
    std::set<std::string> accountedFor;  // fatal stops that what is queued may lead to

private:
    void addEvent(const std::string& name, std::function<void(RadioListener&, const UUID&)> event);
    std::optional<NSError> failure(std::string_view text) const;
    Sighting sighting(const UUID& identifier);
    std::optional<Data> value(AttributeHandle handle, const std::string& text);
    template <class Found>
    std::vector<Found> found(const char* (*uuidOf)(int), std::optional<NSError>& failed);

    std::array<UUID, 3> devices = {UUID({0}), UUID({0}), UUID({0})};
    const NSError error{"radio", 9};
};

}  // namespace InkoraKit
