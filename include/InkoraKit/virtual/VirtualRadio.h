#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/platform/CBManagerState.h>
#include <InkoraKit/platform/UUID.h>
#include <InkoraKit/virtual/VirtualPeripheral.h>

#include <memory>
#include <vector>

namespace InkoraKit {

class VirtualRadioPort;

/// A Bluetooth adapter and the air around it, in this process: what demos run on and what a host's
/// own tests script. The kit behaves on it as on a real adapter.
///
///     auto radio = VirtualRadio::install();
///     auto pen = std::make_shared<VirtualPen>();
///     radio->add(pen);
///     InkoraManager::startDevicePairing();
///
/// Everything happens on the main run loop by its clock. Under a `VirtualClock` nobody waits, and
/// every run is the same:
///
///     RunLoop::main().setClock(std::make_shared<VirtualClock>());
///
/// Belongs to the run loop's thread.
class INKORA_EXPORT VirtualRadio {
public:
    /// Makes central managers created from now on use a new virtual radio, whose adapter is powered
    /// on. It stays installed for as long as the caller keeps it, or until another is installed.
    [[nodiscard]] static std::shared_ptr<VirtualRadio> install();

    /// Brings back the system's radio for managers created from now on. To those that use this one
    /// it is as if the adapter were pulled out.
    ~VirtualRadio();

    /// Neither copied nor moved: managers and peripherals refer to it.
    VirtualRadio(const VirtualRadio&) = delete;
    VirtualRadio& operator=(const VirtualRadio&) = delete;

    /// What the adapter reports. In any state but `poweredOn` all links are gone, without a word,
    /// and scans and attempts to connect are forgotten. `unsupported` is an absent adapter;
    /// `unknown` and `resetting` are told of like the others.
    CBManagerState state() const noexcept { return state_; }
    void setState(CBManagerState state);

    /// Whether the signal strength of a link can be read, true at first; some systems do not allow
    /// it.
    bool canReadRSSI() const noexcept { return canReadRSSI_; }
    void setCanReadRSSI(bool can) { canReadRSSI_ = can; }

    /// Brings a peripheral within reach; the radio shares it.
    /// @throws std::invalid_argument where one with its identifier, or it itself, was added
    /// already.
    void add(std::shared_ptr<VirtualPeripheral> peripheral);
    /// Takes a peripheral away; a link to it is lost (CBErrorDomain 6). Harmless when not there.
    void remove(const std::shared_ptr<VirtualPeripheral>& peripheral);
    /// Those within reach, in the order in which they were added.
    const std::vector<std::shared_ptr<VirtualPeripheral>>& peripherals() const noexcept {
        return peripherals_;
    }

    /// Whether any central manager is scanning, for tests to ask.
    bool isScanning() const;

private:
    friend class VirtualPeripheral;
    friend class VirtualRadioPort;

    VirtualRadio() = default;
    std::shared_ptr<VirtualPeripheral> find(const UUID& identifier) const;
    void hear(VirtualPeripheral& peripheral, bool reportEvenIfKnown);
    void peripheralChanged(VirtualPeripheral& peripheral);
    void everyPeripheralChanged();

    CBManagerState state_ = CBManagerState::poweredOn;
    bool canReadRSSI_ = true;
    std::vector<std::shared_ptr<VirtualPeripheral>> peripherals_;
    std::vector<VirtualRadioPort*> ports_;  // each leaves the list when it ends
};

}  // namespace InkoraKit
