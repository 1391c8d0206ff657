#pragma once

#include "platform/bluetooth/radio.h"

#include <map>
#include <utility>
#include <vector>

namespace InkoraKit {

/// Web Bluetooth, where the kit is WebAssembly in a page. The browser is spoken to in WebRadio.js.
class WebRadio final : public Radio {
public:
    WebRadio() = default;
    ~WebRadio() override;
    WebRadio(const WebRadio&) = delete;
    WebRadio& operator=(const WebRadio&) = delete;

    RadioCapabilities capabilities() const override { return {.canReadRSSI = false}; }
    void start(RadioListener& listener) override;
    CBManagerStateReason stateReason() const override { return reason_; }
    void startScan() override;
    void stopScan() override;
    void connect(const UUID& peripheral) override;
    void disconnect(const UUID& peripheral) override;
    void discoverServices(const UUID& peripheral) override;
    void discoverCharacteristics(const UUID& peripheral, AttributeHandle service) override;
    void read(const UUID& peripheral, AttributeHandle characteristic) override;
    void subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) override;
    void readRSSI(const UUID& peripheral) override;

    // For what the script reports: pens have numbers there, and lists come item by item.
    void stateChanged(CBManagerState state, bool hasWebBluetooth);
    void sighted(int pen, Sighting sighting);
    void add(const RemoteCharacteristic& item) { items_.push_back(item); }
    std::vector<RemoteCharacteristic> takeItems() { return std::exchange(items_, {}); }
    RadioListener& listener() { return *listener_; }
    const UUID& pen(int number) const { return pens_.at(number); }

private:
    int numberOf(const UUID& peripheral) const;

    RadioListener* listener_ = nullptr;
    CBManagerStateReason reason_ = CBManagerStateReason::none;
    std::map<int, UUID> pens_;  // those sighted
    std::vector<RemoteCharacteristic> items_;
};

}  // namespace InkoraKit
