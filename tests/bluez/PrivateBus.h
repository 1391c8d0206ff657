#pragma once

#include <sys/types.h>

#include <string>

namespace InkoraKit {

/// A message bus of this process's own. While it lives, it is the system bus.
class PrivateBus {
public:
    enum class Policy { open, bluezDenied };

    explicit PrivateBus(Policy policy = Policy::open);
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Whether dbus-daemon is installed.
    static bool isAvailable();

    /// Empty when the bus did not start.
    const std::string& address() const { return address_; }

private:
    pid_t daemon_ = -1;
    std::string address_;
};

}  // namespace InkoraKit
