#pragma once

#include <InkoraKit/Export.h>

#include <string>
#include <string_view>

namespace InkoraKit {

/// Why Bluetooth cannot be used at present, as far as the system tells: what would help a person,
/// or a log, beyond the state of a central manager.
enum class CBManagerStateReason {
    none,          ///< it can be used, or nothing more is known
    noBus,         ///< there is no system bus by which to reach the Bluetooth service
    noService,     ///< there is no Bluetooth service, or it does not answer
    noAdapter,     ///< there is a service, but no adapter with Bluetooth LE
    switchedOff,   ///< the adapter is switched off
    blocked,       ///< the adapter is blocked, by a switch of the machine or by the system (rfkill)
    notPermitted,  ///< the system does not let this process use Bluetooth
};

/// A text for people: "The adapter is switched off."; empty for `none`.
INKORA_EXPORT std::string_view description(CBManagerStateReason reason) noexcept;

/// What a log line shows of a reason: the bare name of its case, "switchedOff".
INKORA_EXPORT std::string printed(CBManagerStateReason reason);

}  // namespace InkoraKit
