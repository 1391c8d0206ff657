#pragma once

#include <InkoraKit/Export.h>
#include <InkoraKit/virtual/VirtualPeripheral.h>

#include <cstdint>
#include <memory>

namespace InkoraKit {

/// A pen without a pen: advertises as "InkoraPen" and offers the pen's service with its colour and
/// battery characteristics.
///
///     auto radio = VirtualRadio::install();
///     auto pen = std::make_shared<VirtualPen>();
///     radio->add(pen);
///     ...
///     pen->capture(255, 128, 0);
///
/// To send anything else than a well-formed colour, script `colour()` directly, as with
/// `pen->notify(*pen->colour(), Data{0x01})`.
class INKORA_EXPORT VirtualPen : public VirtualPeripheral {
public:
    /// A second pen needs a serial number of its own.
    explicit VirtualPen(std::uint64_t serialNumber = 0);
    ~VirtualPen() override;

    /// The pen's two characteristics, to script what else it may send.
    const std::shared_ptr<VirtualCharacteristic>& colour() const noexcept;
    const std::shared_ptr<VirtualCharacteristic>& battery() const noexcept;

    /// Captures a colour: it becomes the colour characteristic's value and is notified.
    void capture(std::uint8_t red, std::uint8_t green, std::uint8_t blue);

    /// The battery's charge in percent, 100 at first: becomes the battery characteristic's value
    /// and is notified.
    void setBattery(std::uint8_t percent);

    /// Captures a colour every `interval` seconds while a central is subscribed to colours. The
    /// seed decides on all of them: the first colour that reaches a central is the same in every
    /// run, and so is each one after it. Starts anew when it was under way.
    void startCapturing(double interval, std::uint32_t seed = 0);
    /// Ends what `startCapturing` began. Harmless otherwise.
    void stopCapturing();

private:
    void scheduleCapture(double interval);

    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace InkoraKit
