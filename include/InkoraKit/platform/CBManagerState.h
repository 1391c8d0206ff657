#pragma once

namespace InkoraKit {

/// What the Bluetooth adapter of a central manager can do at present. Scanning and connecting work
/// in `poweredOn` only.
enum class CBManagerState {
    unknown = 0,       ///< the radio has not answered yet
    resetting = 1,     ///< the connection to the system's Bluetooth service was lost for the moment
    unsupported = 2,   ///< no adapter with Bluetooth LE, or no Bluetooth service to ask for one
    unauthorized = 3,  ///< this process may not use Bluetooth
    poweredOff = 4,    ///< the adapter is switched off or blocked
    poweredOn = 5,     ///< Bluetooth can be used
};

}  // namespace InkoraKit
