#pragma once

#include "platform/bluetooth/radio.h"

namespace InkoraKit {

/// Stands in where there is no radio: Bluetooth LE is unsupported, for the reason given. The
/// commands do nothing, since nobody may give one before the adapter is powered on.
class AbsentRadio final : public Radio {
public:
    explicit AbsentRadio(CBManagerStateReason reason) : reason_(reason) {}

    RadioCapabilities capabilities() const override { return {.canReadRSSI = false}; }
    void start(RadioListener& listener) override {
        listener.adapterStateChanged(CBManagerState::unsupported);
    }
    CBManagerStateReason stateReason() const override { return reason_; }
    void startScan() override {}
    void stopScan() override {}
    void connect(const UUID&) override {}
    void disconnect(const UUID&) override {}
    void discoverServices(const UUID&) override {}
    void discoverCharacteristics(const UUID&, AttributeHandle) override {}
    void read(const UUID&, AttributeHandle) override {}
    void subscribe(const UUID&, AttributeHandle, bool) override {}
    void readRSSI(const UUID&) override {}

private:
    CBManagerStateReason reason_;
};

}  // namespace InkoraKit
