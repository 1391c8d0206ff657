#pragma once

#include <InkoraKit/platform/RunLoopSource.h>

#include "platform/foundation/loop/Alarm.h"
#include "platform/radios/bluez/DeviceAddress.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace InkoraKit {

/// The kernel's Bluetooth management channel, asked for the one thing that BlueZ does not offer on
/// D-Bus: the signal strength of a link. It takes the capability CAP_NET_ADMIN.
///
/// Open only while a question is: every event of every adapter comes through such a socket, and
/// would wake the host for nothing.
class ManagementSocket final : public RunLoopSource {
public:
    /// dBm, or what went wrong.
    using Completion = std::function<void(std::optional<int> rssi, const std::string& error)>;

    /// An index that no controller has.
    static constexpr std::uint16_t noController = 0xfffe;

    /// Opens the channel: a descriptor, or -1 where this process may not.
    using Opener = int (*)();

    explicit ManagementSocket(Opener opener = openChannel) : opener_(opener) {}
    ~ManagementSocket() override;
    ManagementSocket(const ManagementSocket&) = delete;
    ManagementSocket& operator=(const ManagementSocket&) = delete;

    /// Whether this process may ask.
    static bool isPermitted(Opener opener = openChannel);

    /// Completes once, inside this call where nothing can be asked; not at all if this object ends
    /// before. The kernel measures anew every one to three seconds at most; in between it repeats
    /// itself.
    void readRSSI(std::uint16_t controller, const DeviceAddress& address, Completion completion);

    int descriptor() const override { return descriptor_; }
    void service() override;

private:
    struct Question {
        std::uint16_t controller;
        DeviceAddress address;
        Completion completion;
    };

    static int openChannel();
    void ask();
    bool open();
    void close();
    void receive(std::span<const std::uint8_t> packet);
    void answer(std::optional<int> rssi, const std::string& error);

    const Opener opener_;
    std::deque<Question> questions_;  // the first is under way
    int descriptor_ = -1;
    Alarm limit_;
};

}  // namespace InkoraKit
