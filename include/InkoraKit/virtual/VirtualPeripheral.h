#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/Data.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/UUID.h>
#include <InkoraKit/virtual/VirtualAdvertisement.h>
#include <InkoraKit/virtual/VirtualConnectAnswer.h>
#include <InkoraKit/virtual/VirtualProximity.h>
#include <InkoraKit/virtual/VirtualService.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {

class VirtualLink;
class VirtualRadio;

/// A Bluetooth LE device of the virtual world, from a mere advertiser to a peripheral with
/// services:
///
///     auto lamp = std::make_shared<VirtualPeripheral>("Lamp");
///     auto brightness = std::make_shared<VirtualCharacteristic>(CBUUID("2A19"), Data{80});
///     lamp->setServices({{CBUUID("180F"), {brightness}}});
///     radio->add(lamp);
///     ...
///     lamp->notify(*brightness, Data{81});
///
/// It can be heard, and connected to, once it was added to a `VirtualRadio`. Like a pen it takes
/// one link at a time and does not advertise while it has one; a second central's attempt to
/// connect waits until it is free. Belongs to the run loop's thread. Delays are in seconds.
class INKORA_EXPORT VirtualPeripheral {
public:
    /// One that advertises `name`. Name and serial number make up the identifier, the same in every
    /// run; two devices that start out with one name need different serial numbers.
    explicit VirtualPeripheral(std::string name, std::uint64_t serialNumber = 0);
    virtual ~VirtualPeripheral();

    /// Neither copied nor moved: it is one device.
    VirtualPeripheral(const VirtualPeripheral&) = delete;
    VirtualPeripheral& operator=(const VirtualPeripheral&) = delete;

    /// What a central manager knows it by.
    const UUID& identifier() const noexcept;

    // Advertising

    /// What it sends out from now on. A scan that has reported it reports a changed name, and
    /// nothing else of it.
    const VirtualAdvertisement& advertisement() const noexcept;
    void setAdvertisement(VirtualAdvertisement advertisement);
    /// Changes the advertised name alone; absent: the advertisement has none.
    void setName(std::optional<std::string> name);

    /// Whether it advertises at all, true at first. One that does not answers no attempt to
    /// connect.
    bool isAdvertising() const noexcept;
    void setAdvertising(bool on);

    /// Sends one advertisement at once, which every running scan reports even if it has reported
    /// this peripheral already.
    void advertiseAgain();

    /// The name that it tells of itself over a link, which systems remember (its GAP device name).
    /// Absent at first: then only the advertised one is known.
    const std::optional<std::string>& gapName() const noexcept;
    void setGapName(std::optional<std::string> name);

    // Signal

    /// Signal strength in dBm, -60 at first; 127 for one that the system cannot tell.
    int rssi() const noexcept;
    void setRSSI(int rssi);
    /// Sets the signal strength that goes with the proximity. Out of range it stays as it was, but
    /// the peripheral is not heard, attempts to connect to it wait, and what it and the central say
    /// to each other is held back. It goes on when the peripheral returns before the supervision
    /// time-out; otherwise the link is lost.
    void setProximity(VirtualProximity proximity);

    // Connecting

    /// How attempts to connect are answered, accepted at first, and after what time, 0 at first.
    void setConnectAnswer(VirtualConnectAnswer answer);
    void setConnectDelay(double seconds);

    /// Whether it has a link.
    bool isConnected() const noexcept;

    /// Closes the link from this side; the central is told at once (CBErrorDomain 7).
    void dropLink();
    /// Falls silent, as when the battery is taken out; the central notices when the supervision
    /// time-out has passed (CBErrorDomain 6). From then on it advertises again.
    void loseLink();
    /// Seconds of silence after which a link counts as lost, 4 at first.
    void setSupervisionTimeout(double seconds);

    // Services

    /// What discovery finds, in this order. During a link a central is told of the change at once
    /// (a Service Changed indication, Bluetooth Core Specification, Vol 3, Part G, 7.1): a service
    /// that is not the same as before, characteristics and all, is invalid, and a subscription goes
    /// on with the characteristic of the same UUID in a new service of the same UUID.
    const std::vector<VirtualService>& services() const noexcept;
    void setServices(std::vector<VirtualService> services);

    /// Makes the next discovery, of services or of characteristics, fail.
    void failNextDiscovery(const NSError& error);

    /// Seconds that each request over the link takes, 0 at first. Requests are answered one after
    /// the other, in the order made.
    void setAnswerDelay(double seconds);

    /// Notifies a subscribed central of any value, also of none; without one nothing happens. The
    /// characteristic's own value, which reads are answered with, stays as it is.
    void notify(const VirtualCharacteristic& characteristic, std::optional<Data> value);
    /// Whether a central is subscribed to the characteristic.
    bool isSubscribed(const VirtualCharacteristic& characteristic) const;

private:
    friend class VirtualLink;
    friend class VirtualRadio;
    friend class VirtualRadioPort;

    bool isHeard() const;
    bool answersConnect() const;
    void advertise();
    /// Anything has changed that decides who hears it, who may connect, or whether its link holds.
    void changed();
    void endLink(const std::optional<NSError>& error);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
