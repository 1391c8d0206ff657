#pragma once

#include <InkoraKit/virtual/VirtualService.h>

#include "platform/bluetooth/radio.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

class Timer;
class VirtualPeripheral;

/// A link between a virtual peripheral, which owns it, and a central. Requests are carried out one
/// by one; notifications pass at once. No timer runs while nothing is asked.
class VirtualLink final : public std::enable_shared_from_this<VirtualLink> {
public:
    VirtualLink(VirtualPeripheral& peripheral, RadioListener& listener);
    ~VirtualLink();
    VirtualLink(const VirtualLink&) = delete;
    VirtualLink& operator=(const VirtualLink&) = delete;

    bool isWith(const RadioListener* listener) const { return listener == &listener_; }

    void discoverServices();
    void discoverCharacteristics(AttributeHandle service);
    void read(AttributeHandle characteristic);
    void subscribe(AttributeHandle characteristic, bool on);
    void readRSSI();

    void notify(const VirtualCharacteristic& characteristic, std::optional<Data> value);
    bool isSubscribed(const VirtualCharacteristic& characteristic) const;

    /// The peripheral has another table of services than before.
    void servicesChanged();

    void reportName(const std::string& name);

    /// The central closes the link: nothing more is answered, and soon the peripheral ends it.
    void close();
    /// The peripheral falls silent for good.
    void lose();
    /// The peripheral has left, or returned, or may have.
    void rangeChanged();

    /// Stops everything without a word.
    void stop();
    /// Stops everything and reports it: without an error when the central has closed the link.
    void end(const std::optional<NSError>& error);

private:
    enum class Phase { open, lost, closing, ended };

    // What has a handle. No handle is given twice during a link.
    struct Characteristic {
        AttributeHandle handle;
        std::shared_ptr<VirtualCharacteristic> sent;
        bool isSubscribed = false;
    };
    struct Service {
        AttributeHandle handle;
        CBUUID uuid;
        bool isPrimary;
        std::vector<Characteristic> characteristics;
    };
    struct Request {
        double delay;
        std::function<void()> answer;
    };

    bool carries() const;
    Service numbered(const VirtualService& service);
    static bool isSame(const Service& earlier, const VirtualService& service);
    void bequeath(const Service& gone, const Characteristic& characteristic,
                  AttributeHandle lastBefore);
    Characteristic* find(AttributeHandle handle);
    AttributeHandle subscribedHandle(const VirtualCharacteristic& characteristic) const;
    std::optional<NSError> takeDiscoveryError();

    void ask(double extraDelay, std::function<void()> answer);
    void scheduleRequest();
    void answerRequest();
    void send(std::function<void()> report);
    void sendHeldBack();

    VirtualPeripheral& peripheral_;
    RadioListener& listener_;
    Phase phase_ = Phase::open;
    AttributeHandle lastHandle_ = 0;
    std::vector<Service> services_;
    std::deque<Request> requests_;
    std::deque<std::function<void()>> heldBack_;  // while out of range
    std::shared_ptr<Timer> requestTimer_;
    std::shared_ptr<Timer> endTimer_;  // closing, or the supervision time-out
};

}  // namespace InkoraKit
