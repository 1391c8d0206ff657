#pragma once

#include "Controller.h"
#include "Packet.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// What lies between a host's controller and a pen's, and their emulation leaves out: a pen
/// advertises again and again, with a signal strength; a request for a link waits for the pen, and
/// can be cancelled; a link can be lost, or fall silent. There is one link at a time.
///
/// Tells what happens on standard output, a JSON object a line, with the monotonic clock's seconds:
/// `scan`, `advertising` and `request` are "on" or "off"; `link` is "open" or, in two hexadecimal
/// digits, why it closed.
class Air {
public:
    /// Makes hci0, the host's, and hci1, the pen's, of btvirt's controllers, which `socket` has.
    /// @throws std::system_error
    explicit Air(const std::string& socket);
    Air(const Air&) = delete;
    Air& operator=(const Air&) = delete;
    ~Air() = default;

    /// In dBm, of advertisements and of the link.
    void setStrength(int strength) { strength_ = static_cast<std::uint8_t>(strength); }
    /// Out of range the pen is not heard, and a link is lost.
    void setInRange(bool inRange);
    /// While held, no request for a link reaches the pen.
    void holdRequests(bool held) { areRequestsHeld_ = held; }
    /// While stalled, what the pen sends over the link waits.
    void stall(bool stalled);
    /// Ends the link with a reason (Bluetooth Core, volume 1, part F), told to both ends.
    void drop(std::uint8_t reason);
    /// The next link ends when it has just come up.
    void dropNextLink() { isNextLinkDropped_ = true; }
    /// Pulls out the host's controller.
    void unplug();
    /// Puts it in again.
    void plug() { host_.plug(); }

private:
    struct Scan {
        double began;
        bool filtersDuplicates;
    };
    struct Advertisement {
        Packet report;
        bool isTold;  // in the scan in progress
    };

    void fromHostsKernel(const Packet& packet);
    void fromHostsEmulation(const Packet& packet);
    void fromPensKernel(const Packet& packet);
    void fromPensEmulation(const Packet& packet);

    void setScan(bool enabled, bool filtersDuplicates);
    void setAdvertising(bool enabled);
    void setRequest(std::optional<Packet> request);
    void forgetHost();
    void holdRequest(const Packet& request);
    bool cancelRequest();
    void answerPower(const Packet& command, std::uint8_t power);
    bool takeOwnStatus(const Packet& event);
    void hear(const Packet& report);
    void linkOpened();
    void linkClosed(std::uint8_t reason);
    void advertise();
    void tellAdvertisements();

    Controller host_, pen_;
    std::uint8_t strength_;  // in two's complement, as it is sent
    bool isInRange_ = true;
    bool areRequestsHeld_ = false;
    bool isStalled_ = false;
    bool isNextLinkDropped_ = false;

    bool isAdvertising_ = false;
    std::optional<Scan> scan_;
    std::map<std::uint8_t, Advertisement>
        heard_;  // by their kind: the advertisement, a scan's response
    std::optional<Packet> request_;
    std::optional<std::uint16_t> link_;   // the pen's handle of it
    std::vector<Packet> stalledPackets_;  // the pen's
    std::multiset<std::uint16_t> own_;    // commands of ours, whose status the kernel must not see
};
