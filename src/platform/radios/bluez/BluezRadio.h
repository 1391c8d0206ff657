#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/radios/bluez/AdvertisedProperties.h"
#include "platform/radios/bluez/BluezDaemon.h"
#include "platform/radios/bluez/Discovery.h"
#include "platform/radios/bluez/Link.h"
#include "platform/radios/bluez/ManagementSocket.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace InkoraKit {

/// The radio of Linux: bluetoothd, by way of the D-Bus system bus. What is said of its behaviour in
/// this folder was observed on BlueZ 5.66.
///
/// One adapter is used at a time: the first that is switched on, else the first. It stays in use
/// until it goes or is switched off while another is on, or another is switched on in its stead.
/// The one that was used first is taken up again when it comes back, unless a link is in the way.
class BluezRadio final : public Radio, BluezDaemon::Observer, Link::Owner {
public:
    BluezRadio();
    /// Closes what links there are; BlueZ itself would keep them.
    ~BluezRadio() override;

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

    /// Closes all links and attempts without waiting for it.
    void hangUp();

private:
    // BluezDaemon::Observer
    void messageHeard(std::uint64_t serial) override;
    void presenceChanged() override;
    void interfaceAdded(const std::string& path, const std::string& interface) override;
    void interfaceRemoved(const std::string& path, const std::string& interface) override;
    void propertiesChanged(const std::string& path, const std::string& interface,
                           const Properties& before) override;

    // Link::Owner
    void linkMoved(Link& link) override;
    std::string deviceOf(const UUID& peripheral) const override;

    // The adapter in use
    struct Condition {
        std::optional<CBManagerState> state;  // absent while it is not known yet
        CBManagerStateReason reason = CBManagerStateReason::none;
    };
    Condition condition() const;
    void updateState();
    bool isCentral(const std::string& adapter) const;
    bool isPowered(const std::string& adapter) const;
    bool isBlocked(const std::string& adapter) const;
    bool isFirstUsed(const std::string& adapter) const;
    std::string addressOf(const std::string& adapter) const;
    std::string bestAdapter() const;
    void adapterImproved(const std::string& adapter);
    void use(const std::string& adapter);

    // Scanning
    void discoveryMoved();
    void updateDiscovery();
    void deviceChanged(const std::string& path, const Properties& before);
    void reportAll();
    void reportIfHeard(const std::string& device);
    void reportLinked(const std::string& device, const UUID& identifier);
    Sighting sightingOf(const std::string& device, const UUID& identifier, int rssi) const;

    // Links
    void adapterIsOn();
    std::shared_ptr<GattSession> sessionOf(const std::string& path,
                                           const std::string& interface) const;
    std::shared_ptr<Link> linkAt(const std::string& device) const;
    std::shared_ptr<Link> linkTo(const UUID& peripheral) const;
    std::shared_ptr<GattSession> sessionWith(const UUID& peripheral) const;
    std::optional<UUID> identifierOf(const std::string& device) const;

    RadioListener* listener_ = nullptr;  // set by `start`, before all else
    BluezDaemon daemon_;
    Discovery discovery_;
    AdvertisedProperties advertised_;
    ManagementSocket management_;
    bool canReadRSSI_;

    std::optional<CBManagerState> state_;  // as reported
    std::string adapter_;                  // in use; empty when there is none
    std::string firstUsed_;                // the address of the first adapter that was in use
    bool isScanWanted_ = false;
    std::set<UUID> linkedElsewhere_;  // what the present scan has reported as that
    Alarm anticipation_;  // set for a while after a link was lost, when a scan is to be expected
    bool provesPower_ = false;  // the discovery begun now will, by beginning
    std::vector<std::shared_ptr<Link>> links_;
};

}  // namespace InkoraKit
