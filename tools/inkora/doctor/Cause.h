#pragma once

namespace InkoraTool {

/// For a command that has ended because Bluetooth cannot be used: tells on standard error what the
/// doctor finds at a glance, in one line.
void tellCauseOfNoBluetooth();

}  // namespace InkoraTool
