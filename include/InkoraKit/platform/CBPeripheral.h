#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/CBCharacteristic.h>
#include <InkoraKit/platform/CBService.h>
#include <InkoraKit/platform/CBUUID.h>
#include <InkoraKit/platform/NSError.h>
#include <InkoraKit/platform/NSNumber.h>
#include <InkoraKit/platform/NSObject.h>
#include <InkoraKit/platform/UUID.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace InkoraKit {

class CBPeripheral;
class CentralCore;

/// How the link to a peripheral stands.
enum class CBPeripheralState {
    disconnected = 0,   ///< no link, and no attempt at one
    connecting = 1,     ///< from `connect` to the callback of its outcome
    connected = 2,      ///< takes commands
    disconnecting = 3,  ///< from the cancelling of a link to the callback of its end
};

/// Hears what a connected peripheral answers. Held weakly; called on the main run loop, never from
/// inside the command that is answered. Override what is of interest.
class INKORA_EXPORT CBPeripheralDelegate {
public:
    virtual ~CBPeripheralDelegate();

    /// The answer to `discoverServices`. After an error `services()` is as it was before.
    virtual void peripheralDidDiscoverServices(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::optional<NSError>& error) {}

    /// The answer to `discoverCharacteristics`. After an error the service is as it was before.
    virtual void peripheralDidDiscoverCharacteristicsForService(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::shared_ptr<CBService>& service,
        [[maybe_unused]] const std::optional<NSError>& error) {}

    /// The peripheral changed its table of services during the link: these have left `services()`
    /// and are relics, and what takes their place is there to be discovered. A subscription goes on
    /// where the new table has the same characteristic: the object that was subscribed takes
    /// commands as before, and gets the values until a new one is discovered in its stead. The list
    /// is empty where the table has only grown.
    virtual void peripheralDidModifyServices(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::vector<std::shared_ptr<CBService>>& invalidatedServices) {}

    /// The answer to `readRSSI`, in dBm. A strength that cannot be read on this system is never
    /// made up: there is no call then.
    virtual void peripheralDidReadRSSI(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const NSNumber& rssi,
        [[maybe_unused]] const std::optional<NSError>& error) {}

    /// The answer to a read, or a notification; nothing tells the two apart. With an error the
    /// characteristic keeps the value it had.
    virtual void peripheralDidUpdateValueForCharacteristic(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::shared_ptr<CBCharacteristic>& characteristic,
        [[maybe_unused]] const std::optional<NSError>& error) {}

    /// The answer to `setNotifyValue`: `isNotifying()` tells how it stands.
    virtual void peripheralDidUpdateNotificationStateForCharacteristic(
        [[maybe_unused]] const std::shared_ptr<CBPeripheral>& peripheral,
        [[maybe_unused]] const std::shared_ptr<CBCharacteristic>& characteristic,
        [[maybe_unused]] const std::optional<NSError>& error) {}
};

/// A remote device, found by a central manager. Within one manager a device is one object for as
/// long as anybody holds it; the manager does not, so one that is being connected must be kept.
///
/// Commands need a connected peripheral. Others are ignored, with a line on standard error; so are
/// commands on services or characteristics of an earlier link. When a link ends, open commands get
/// no answer. Belongs to the main run loop's thread.
class INKORA_EXPORT CBPeripheral final : public NSObject {
public:
    ~CBPeripheral() override;
    /// Neither copied nor moved: within one manager a device is one object.
    CBPeripheral(const CBPeripheral&) = delete;
    CBPeripheral& operator=(const CBPeripheral&) = delete;

    /// The same for one device on one machine, across scans and runs; not its radio address.
    const UUID& identifier() const noexcept { return identifier_; }

    /// The device's own name once it is known, else the last one advertised.
    const std::optional<std::string>& name() const noexcept {
        return ownName_ ? ownName_ : advertisedName_;
    }

    /// Changes at once with `connect`, with cancelling and when the adapter goes, else right before
    /// the callback that tells of it.
    CBPeripheralState state() const noexcept { return state_; }

    /// Who hears the answers, also those that are queued already. Null while there is nobody.
    std::shared_ptr<CBPeripheralDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(std::weak_ptr<CBPeripheralDelegate> delegate);

    /// The services discovered on this link, in the device's order: absent before the first
    /// successful discovery and after the link, empty when none was found.
    const std::optional<std::vector<std::shared_ptr<CBService>>>& services() const noexcept {
        return services_;
    }

    /// Looks for these services, for all when the list is empty. What is found joins what was found
    /// before. Ignored without a delegate, with a line on standard error.
    void discoverServices(const std::vector<CBUUID>& services);
    /// Looks for these characteristics of a service, for all when the list is empty. Likewise, but
    /// for the delegate.
    void discoverCharacteristics(const std::vector<CBUUID>& characteristics,
                                 const std::shared_ptr<CBService>& service);
    /// Reads the value: the answer is `peripheralDidUpdateValueForCharacteristic`.
    void readValue(const std::shared_ptr<CBCharacteristic>& characteristic);
    /// Subscribes to notifications, or indications, and ends that. Answered also where it changes
    /// nothing; values may come before the answer.
    void setNotifyValue(bool enabled, const std::shared_ptr<CBCharacteristic>& characteristic);
    /// Asks for the signal strength of the link.
    void readRSSI();

    /// Identifier, name and state, for logs: `<CBPeripheral: 0x…, identifier = …, name = …, state =
    /// connected>`.
    std::string description() const;

private:
    friend class CentralCore;

    CBPeripheral(const UUID& identifier, std::weak_ptr<CentralCore> core);
    std::shared_ptr<CentralCore> coreForCommand() const;
    std::shared_ptr<CBPeripheral> self();
    bool owns(const std::shared_ptr<CBService>& service) const;
    bool owns(const std::shared_ptr<CBCharacteristic>& characteristic) const;

    UUID identifier_;
    std::weak_ptr<CentralCore> core_;
    std::optional<std::string> ownName_;
    std::optional<std::string> advertisedName_;
    CBPeripheralState state_ = CBPeripheralState::disconnected;
    std::uint64_t link_ = 0;  // counts attempts to connect, to tell a late event of an earlier one
    bool connectAgain_ = false;  // asked for while the last link was still ending
    std::weak_ptr<CBPeripheralDelegate> delegate_;
    std::optional<std::vector<std::shared_ptr<CBService>>> services_;
    // Subscribed when their service was invalidated, the last one first.
    std::vector<std::shared_ptr<CBCharacteristic>> carriedOver_;
    std::deque<std::vector<CBUUID>> discoveries_;  // what each open discovery asked for
};

}  // namespace InkoraKit
