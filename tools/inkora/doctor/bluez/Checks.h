#pragma once

#include "doctor/Finding.h"
#include "doctor/bluez/Machine.h"

namespace InkoraTool {

/// What the findings are called, in the order in which they are told.
namespace named {
inline constexpr const char* bus = "system bus";
inline constexpr const char* bluetoothd = "bluetoothd";
inline constexpr const char* permission = "permission";
inline constexpr const char* answer = "answer";
inline constexpr const char* adapter = "adapter";
inline constexpr const char* signalStrength = "signal strength";
inline constexpr const char* otherPrograms = "other programs";
inline constexpr const char* pens = "pens";
inline constexpr const char* connection = "connection";
inline constexpr const char* firstValue = "first value";
}  // namespace named

// A further check is a function like these, in a file of its own, and a row of the table in
// Examination.cpp. Each may rely on what those before it have found to be so.

Findings lookAtBus(Machine& machine);
Findings lookAtBluetoothd(Machine& machine);
/// Whether this user may talk to bluetoothd, and whether it answers.
Findings lookAtAnswer(Machine& machine);
Findings lookAtAdapters(Machine& machine);
Findings lookAtSignalStrength(Machine& machine);
Findings lookAtOtherPrograms(Machine& machine);
Findings listenForPens(Machine& machine);
/// Whether a pen can be connected, and tells something.
Findings tryAPen(Machine& machine);

}  // namespace InkoraTool
