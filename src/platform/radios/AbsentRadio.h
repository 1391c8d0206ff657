#pragma once

#include "platform/bluetooth/radio.h"

namespace InkoraKit {

/// Stands in on a system that the kit has no radio for: Bluetooth LE is unsupported there. The
/// commands do nothing, since nobody may give one before the adapter is powered on.
class AbsentRadio final : public Radio {
public:
    RadioCapabilities capabilities() const override { return {.canReadRSSI = false}; }
    void start(RadioListener& listener) override {
        listener.adapterStateChanged(CBManagerState::unsupported);
    }
    CBManagerStateReason stateReason() const override { return CBManagerStateReason::noService; }
    void startScan() override {}
    void stopScan() override {}
    void connect(const UUID&) override {}
    void disconnect(const UUID&) override {}
    void discoverServices(const UUID&) override {}
    void discoverCharacteristics(const UUID&, AttributeHandle) override {}
    void read(const UUID&, AttributeHandle) override {}
    void subscribe(const UUID&, AttributeHandle, bool) override {}
    void readRSSI(const UUID&) override {}
};

}  // namespace InkoraKit
