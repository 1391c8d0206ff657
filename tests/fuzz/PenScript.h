#pragma once

#include <string>
#include <string_view>

namespace InkoraKit {

/// Whether a script can account for a fatal stop, or none is taken, to see that it is noticed.
enum class Accounting { byScript, none };

/// Runs a script of radio events and host calls, one a line, against the engine, and aborts when
/// the engine comes to a fatal stop that nothing in the script accounts for. Lines that make no
/// sense are skipped. The words, with n for a small number:
///
///     adapter n                 the adapter's state becomes n (0 to 5)
///     sight n NAME              device n (0 to 2) advertises NAME; none without one
///     connected n   failed n   lost n   gone n       what becomes of device n's link
///     services n HANDLES        discovery finds these on device n: handle 1 and 5 are the pen's
///     services n !              discovery fails
///     characteristics n m HANDLES   the same in service m: handle 2 is colour, 3 battery
///     read n HANDLE HEX         an answer; no HEX: no bytes, "-": no value, "!": an error
///     notify n HANDLE HEX
///     subscribed n HANDLE       confirmed; "!" refused
///     rssi n STRENGTH
///     name n NAME               the device's own name
///     start  stop  publish  unpublish  battery  proximity  info   the host's calls
///     wait n                    n tenths of a second pass
///     run                       what is queued is done
void runPenScript(std::string_view script, Accounting accounting = Accounting::byScript);

}  // namespace InkoraKit
