#pragma once

#include "platform/bluetooth/radio.h"
#include "support/Transcript.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace InkoraKit {

/// A radio whose events are a test's to send, in any order, and whose commands are noted in a
/// transcript, if there is one. Devices are called by the last byte of their identifier.
class ScriptedRadio final : public Radio {
public:
    using OnCommand = std::function<void(const std::string& word)>;

    /// Installs a radio of this kind; `opened()` is the one that the next manager has opened. What
    /// `onCommand` does happens inside the command.
    static void install(Transcript* transcript = nullptr, OnCommand onCommand = {}) {
        installRadio([transcript, onCommand = std::move(onCommand)] {
            auto radio = std::make_unique<ScriptedRadio>();
            radio->transcript_ = transcript;
            radio->onCommand_ = onCommand;
            opened() = radio.get();
            return radio;
        });
    }
    static ScriptedRadio*& opened() {
        static ScriptedRadio* radio = nullptr;
        return radio;
    }

    ~ScriptedRadio() override {
        note("closed");
        if (opened() == this) opened() = nullptr;
    }

    RadioCapabilities capabilities() const override { return {}; }
    void start(RadioListener& listener) override {
        note("start");
        events = &listener;
    }
    void startScan() override { note("scan"); }
    void stopScan() override { note("stop-scan"); }
    void connect(const UUID& device) override { note("connect", device); }
    void disconnect(const UUID& device) override { note("disconnect", device); }
    void discoverServices(const UUID& device) override { note("services", device); }
    void discoverCharacteristics(const UUID& device, AttributeHandle service) override {
        note("characteristics", device, service);
    }
    void read(const UUID& device, AttributeHandle handle) override { note("read", device, handle); }
    void subscribe(const UUID& device, AttributeHandle handle, bool on) override {
        note(on ? "subscribe" : "unsubscribe", device, handle);
    }
    void readRSSI(const UUID& device) override { note("rssi", device); }

    RadioListener* events = nullptr;

private:
    template <class... Number>
    void note(const std::string& word, Number... numbers) {
        if (transcript_) {
            std::string line = "radio " + word;
            ((line += ' ', line += std::to_string(numbers)), ...);
            transcript_->note(line);
        }
        if (onCommand_) onCommand_("radio-" + word);
    }
    template <class... Handle>
    void note(const std::string& word, const UUID& device, Handle... handle) {
        note(word, unsigned{device.bytes().back()}, handle...);
    }

    Transcript* transcript_ = nullptr;
    OnCommand onCommand_;
};

}  // namespace InkoraKit
