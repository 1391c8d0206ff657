#include "doctor/bluez/Remedies.h"

#include <pwd.h>
#include <unistd.h>

#include "Text.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace InkoraTool::remedies {
namespace {

bool isThere(const char* path) {
    std::error_code none;
    return std::filesystem::exists(path, none);
}

// By what os-release(5) says that the system is, or is like.
struct PackageManager {
    std::string_view system;
    std::string_view command;
};
constexpr std::array<PackageManager, 7> packageManagers = {{
    {"debian", "apt install "},
    {"ubuntu", "apt install "},
    {"fedora", "dnf install "},
    {"rhel", "dnf install "},
    {"suse", "zypper install "},
    {"arch", "pacman -S "},
    {"alpine", "apk add "},
}};

// "debian", or "linuxmint ubuntu debian"
std::string systemNames() {
    std::ifstream file("/etc/os-release");
    std::string names;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("ID=") || line.starts_with("ID_LIKE="))
            names += line.substr(line.find('=') + 1) + ' ';
    return names;
}

}  // namespace

std::string asRoot(const std::string& command) {
    return ::geteuid() == 0 ? command : "sudo " + command;
}

std::string install(const std::string& package) {
    const std::string names = systemNames();
    for (const PackageManager& manager : packageManagers)
        if (names.find(manager.system) != std::string::npos)
            return asRoot(std::string(manager.command) + package);
    return {};
}

// systemd(1) is what runs the system where this folder is: sd_booted(3).
std::string start(const std::string& service) {
    if (isThere("/run/systemd/system")) return asRoot("systemctl start " + service);
    if (isThere("/sbin/openrc-run")) return asRoot("rc-service " + service + " start");
    return asRoot("service " + service + " start");
}

// systemd wakes up what it ends, and kills what does not end (systemd.kill(5)). Others wait.
std::string restartBluetoothd() {
    if (isThere("/run/systemd/system")) return asRoot("systemctl restart bluetooth");
    return asRoot("kill -KILL $(pidof bluetoothd)") + "; " + start("bluetooth");
}

std::string unblock() {
    const std::string unblock = asRoot("rfkill unblock bluetooth") + " && bluetoothctl power on";
    const bool isInstalled = isThere("/usr/sbin/rfkill") || isThere("/usr/bin/rfkill") ||
                             isThere("/sbin/rfkill") || isThere("/bin/rfkill");
    const std::string first = isInstalled ? "" : install("rfkill");
    return first.empty() ? unblock : first + " && " + unblock;
}

std::string joinGroup(const std::string& group) {
    const passwd* const user = ::getpwuid(::getuid());
    return asRoot("usermod -aG " + group + ' ' + (user ? user->pw_name : "USER"));
}

std::string allowSignalStrength() {
    std::error_code none;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", none);
    return asRoot("setcap cap_net_admin+ep " + shellWord(program.string()));
}

}  // namespace InkoraTool::remedies
