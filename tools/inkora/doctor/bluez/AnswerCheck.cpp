#include "doctor/bluez/Checks.h"
#include "doctor/bluez/Remedies.h"
#include "platform/radios/bluez/BluezErrors.h"

#include <InkoraKit/platform/RunLoop.h>
#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <vector>

using namespace InkoraKit;

namespace InkoraTool {
namespace {

// The group that BlueZ's policy for the bus names, as a text of XML: where there is one, it is the
// one that distributions mean to be joined. Debian calls it bluetooth, others lp or plugdev.
std::string groupOfPolicy() {
    for (const char* folder : {"/etc/dbus-1/system.d", "/usr/share/dbus-1/system.d"}) {
        std::ifstream file(std::string(folder) + "/bluetooth.conf");
        const std::string marker = "<policy group=\"";
        for (std::string line; std::getline(file, line);) {
            const auto begin = line.find(marker);
            if (begin == std::string::npos) continue;
            const std::string rest = line.substr(begin + marker.size());
            return rest.substr(0, rest.find('"'));
        }
    }
    return {};
}

// Whether there is such a group, and this process is not in it.
bool isThereToJoin(const std::string& group) {
    const struct group* const entry = ::getgrnam(group.c_str());
    if (!entry || entry->gr_gid == ::getegid()) return false;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
    ::getgroups(static_cast<int>(groups.size()), groups.data());
    return std::ranges::find(groups, entry->gr_gid) == groups.end();
}

Finding denied() {
    Finding finding{named::permission, Finding::State::fault,
                    "this user may not talk to bluetoothd"};
    const std::string group = groupOfPolicy();
    if (!isThereToJoin(group)) {
        finding.advice = "See the policies for org.bluez in /etc/dbus-1/system.d.";
    } else {
        finding.advice = "A group may: join it, and log in again.";
        finding.remedy = remedies::joinGroup(group);
    }
    return finding;
}

}  // namespace

Findings lookAtAnswer(Machine& machine) {
    const double asked = RunLoop::main().now();
    const auto error = machine.askForObjects();
    if (error && bluezErrors::isAccessDenied(*error)) return {denied()};
    const Finding mayAsk{named::permission, Finding::State::ok, "this user may talk to bluetoothd"};
    if (error)
        return {mayAsk,
                {named::answer, Finding::State::fault, "none: " + bluezErrors::textOf(*error),
                 remedies::restartBluetoothd()}};
    const auto took = static_cast<int>((RunLoop::main().now() - asked) * 1000);
    return {mayAsk, {named::answer, Finding::State::ok, "after " + std::to_string(took) + " ms"}};
}

}  // namespace InkoraTool
