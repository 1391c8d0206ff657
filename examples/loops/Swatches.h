#pragma once

#include <InkoraKit/InkoraKit.h>
#include <InkoraKit/virtual/VirtualPen.h>
#include <InkoraKit/virtual/VirtualRadio.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

/// What the hosts in this folder have in common, each of which shows the colours of the first pen
/// it finds in a loop of another kind. What goes wrong is thrown, and ends the host's loop.
class Swatches : public InkoraKit::InkoraProtocols {
public:
    /// Looks for a pen. With the argument `virtual` it needs no Bluetooth, captures twelve colours,
    /// and then the adapter is switched off.
    void pair(int count, char** arguments) {
        if (count > 1 && arguments[1] == std::string("virtual")) {
            const auto pen = std::make_shared<InkoraKit::VirtualPen>();
            pen->startCapturing(0.05, 2);
            virtualRadio_ = InkoraKit::VirtualRadio::install();
            virtualRadio_->add(pen);
        }
        InkoraKit::InkoraManager::startDevicePairing();
    }

    void didConnectedToPeripheral() override { std::puts("connected"); }
    void didPeripheralCaptured(const InkoraKit::UIColor& colour) override {
        std::puts(hex(colour).c_str());
        if (++shown_ == 12 && virtualRadio_)
            virtualRadio_->setState(InkoraKit::CBManagerState::poweredOff);
    }
    void didFailedToInterrogate(const InkoraKit::NSError& error) override { fail(error); }
    void didFailToConnectWithBlueTooth(const InkoraKit::NSError& error) override { fail(error); }

    /// Says why the host ends, and answers its status.
    static int giveUp(const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }

    /// As in "#FF8000".
    static std::string hex(const InkoraKit::UIColor& colour) {
        const auto byte = [](double component) {
            return static_cast<unsigned char>(std::lround(component * 255));
        };
        std::array<char, 8> text;
        std::snprintf(text.data(), text.size(), "#%02X%02X%02X", byte(colour.red()),
                      byte(colour.green()), byte(colour.blue()));
        return text.data();
    }

private:
    [[noreturn]] static void fail(const InkoraKit::NSError& error) {
        throw std::runtime_error(error.domain());
    }

    std::shared_ptr<InkoraKit::VirtualRadio> virtualRadio_;
    int shown_ = 0;
};
