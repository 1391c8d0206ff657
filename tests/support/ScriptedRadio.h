#pragma once

#include "platform/bluetooth/radio.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace InkoraKit {

/// A radio whose events are a test's to send, in any order, and that writes down its commands.
class ScriptedRadio final : public Radio {
public:
    /// Installs a radio of this kind; `radio()` is the one that the next manager has opened.
    static void install() {
        installRadio([] {
            auto radio = std::make_unique<ScriptedRadio>();
            opened() = radio.get();
            return radio;
        });
    }
    static ScriptedRadio*& opened() {
        static ScriptedRadio* radio = nullptr;
        return radio;
    }

    ~ScriptedRadio() override {
        if (opened() == this) opened() = nullptr;
    }

    RadioCapabilities capabilities() const override { return {}; }
    void start(RadioListener& listener) override { events = &listener; }
    void startScan() override { commands.emplace_back("scan"); }
    void stopScan() override { commands.emplace_back("stop"); }
    void connect(const UUID&) override { commands.emplace_back("connect"); }
    void disconnect(const UUID&) override { commands.emplace_back("disconnect"); }
    void discoverServices(const UUID&) override { commands.emplace_back("services"); }
    void discoverCharacteristics(const UUID&, AttributeHandle service) override {
        commands.push_back("characteristics " + std::to_string(service));
    }
    void read(const UUID&, AttributeHandle characteristic) override {
        commands.push_back("read " + std::to_string(characteristic));
    }
    void subscribe(const UUID&, AttributeHandle characteristic, bool on) override {
        commands.push_back((on ? "subscribe " : "unsubscribe ") + std::to_string(characteristic));
    }
    void readRSSI(const UUID&) override { commands.emplace_back("rssi"); }

    std::vector<std::string> take() { return std::exchange(commands, {}); }

    RadioListener* events = nullptr;
    std::vector<std::string> commands;
};

}  // namespace InkoraKit
