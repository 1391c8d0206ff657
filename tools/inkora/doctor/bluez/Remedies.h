#pragma once

#include <string>

/// Commands that mend, as this machine's distribution and its way to run services have them.
namespace InkoraTool::remedies {

/// The command as it is to be given: by `sudo`, unless this process is root's.
std::string asRoot(const std::string& command);

/// Installs a package, by Debian's name for it.
std::string install(const std::string& package);

/// Starts a service, `bluetooth` or `dbus`.
std::string start(const std::string& service);

/// Ends bluetoothd, which may not react any more, and starts it again.
std::string restartBluetoothd();

/// Lets the radios of Bluetooth be switched on again (rfkill), and does so.
std::string unblock();

/// The user joins a group of the system, for logins from then on.
std::string joinGroup(const std::string& group);

/// Lets this program ask the kernel for the signal strength of links.
std::string allowSignalStrength();

}  // namespace InkoraTool::remedies
