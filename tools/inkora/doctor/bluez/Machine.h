#pragma once

#include "ExitStatus.h"
#include "doctor/Waiting.h"
#include "platform/bus/Bus.h"
#include "platform/radios/bluez/ObjectTree.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace InkoraTool {

/// What the checks have to go by, and what they have found out so far, each for those after it.
struct Machine {
    const Waiting& waiting;
    const double patience;   // seconds for an answer that is due at once
    const double listening;  // seconds

    ExitStatus meaning = ExitStatus::success;  // of a fault in the present check

    std::unique_ptr<InkoraKit::Bus> bus = {};
    int busError = 0;  // why it has gone
    std::vector<std::string> namesOnBus = {};
    InkoraKit::ObjectTree objects = {};
    std::string adapter = {};  // the one that the kit uses: its object

    /// Asks for something that comes without a wait where all is well.
    /// @param read  takes the answer, and is not called where there is none in time
    /// @return what went wrong; a bus that has gone is an error as well
    std::optional<InkoraKit::BusError> ask(
        const char* destination, const char* path, const char* interface, const char* member,
        const std::function<void(InkoraKit::MessageReader&)>& read);

    /// Asks bluetoothd for its objects, all anew.
    std::optional<InkoraKit::BusError> askForObjects();

    bool isOnBus(std::string_view name) const;
};

/// A name that came over the air, for a line of a report: no controls, and not too long.
std::string shown(std::string_view name);

}  // namespace InkoraTool
