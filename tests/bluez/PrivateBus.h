#pragma once

#include <InkoraKit/platform/Clock.h>

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>

struct sd_bus;

namespace InkoraKit {

/// A message bus of this process's own, which takes no more than four match rules of anybody, and
/// starts org.bluez by writing down that it was to. While it lives, it is the system bus. Time on
/// the run loop passes only while nothing is on its way over the bus, and then at once.
class PrivateBus {
public:
    /// The bus may refuse to pass on what is sent to org.bluez.
    explicit PrivateBus(bool deniesBluez = false);
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Whether dbus-daemon is installed.
    static bool isAvailable();

    /// Empty when the bus did not start.
    const std::string& address() const { return address_; }

    /// Connects another user to the bus.
    static std::shared_ptr<sd_bus> connect(const std::string& address);

    /// How often org.bluez was to be started.
    int starts() const;

private:
    class QuietClock;

    std::filesystem::path folder_;
    pid_t daemon_ = -1;
    std::string address_;
};

}  // namespace InkoraKit
