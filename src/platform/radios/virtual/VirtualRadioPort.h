#pragma once

#include "platform/bluetooth/radio.h"

#include <map>
#include <memory>

namespace InkoraKit {

class Timer;
class VirtualLink;
class VirtualPeripheral;
class VirtualRadio;

/// One central manager's way into a virtual radio: its scan and its attempts to connect.
class VirtualRadioPort final : public Radio {
public:
    explicit VirtualRadioPort(VirtualRadio& radio);
    ~VirtualRadioPort() override;
    VirtualRadioPort(const VirtualRadioPort&) = delete;
    VirtualRadioPort& operator=(const VirtualRadioPort&) = delete;

    RadioCapabilities capabilities() const override;
    void start(RadioListener& listener) override;
    CBManagerStateReason stateReason() const override;
    void startScan() override;
    void stopScan() override;
    void connect(const UUID& peripheral) override;
    void disconnect(const UUID& peripheral) override;
    void discoverServices(const UUID& peripheral) override;
    void discoverCharacteristics(const UUID& peripheral, AttributeHandle service) override;
    void read(const UUID& peripheral, AttributeHandle characteristic) override;
    void subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) override;
    void readRSSI(const UUID& peripheral) override;

    // What the virtual radio tells its ports.

    bool isScanning() const { return scanning_; }
    void hear(const VirtualPeripheral& peripheral, bool reportEvenIfKnown);
    /// Goes on with an attempt to connect as far as the peripheral allows at present.
    void pursue(const UUID& peripheral);
    void forgetScanAndAttempts();
    void reportState();
    void radioGone() { radio_ = nullptr; }

private:
    void settle(const UUID& peripheral);
    VirtualLink* linkTo(const UUID& peripheral) const;

    VirtualRadio* radio_;  // null once it has ended
    RadioListener* listener_ = nullptr;
    bool scanning_ = false;
    std::map<UUID, double> firstHeard_;  // by this scan, of those whose name is delayed
    std::map<UUID, std::shared_ptr<Timer>>
        attempts_;  // without a timer: waiting for the peripheral
};

}  // namespace InkoraKit
