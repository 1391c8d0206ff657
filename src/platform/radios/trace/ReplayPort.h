#pragma once

#include "platform/radios/trace/TracePlayer.h"

#include <memory>
#include <utility>

namespace InkoraKit {

/// A central manager's way into a trace that is played.
class ReplayPort final : public Radio {
public:
    explicit ReplayPort(std::shared_ptr<TracePlayer> player) : player_(std::move(player)) {}
    ~ReplayPort() override { player_->stop(); }
    ReplayPort(const ReplayPort&) = delete;
    ReplayPort& operator=(const ReplayPort&) = delete;

    RadioCapabilities capabilities() const override { return player_->answers().capabilities; }
    CBManagerStateReason stateReason() const override { return player_->answers().reason; }
    void start(RadioListener& listener) override { player_->start(listener); }
    void startScan() override { give({"scan"}); }
    void stopScan() override { give({"stopScan"}); }
    void connect(const UUID& peripheral) override { give({"connect", peripheral}); }
    void disconnect(const UUID& peripheral) override { give({"disconnect", peripheral}); }
    void discoverServices(const UUID& peripheral) override {
        give({"discoverServices", peripheral});
    }
    void discoverCharacteristics(const UUID& peripheral, AttributeHandle service) override {
        give({"discoverCharacteristics", peripheral, service});
    }
    void read(const UUID& peripheral, AttributeHandle characteristic) override {
        give({"read", peripheral, characteristic});
    }
    void subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) override {
        give({on ? "subscribe" : "unsubscribe", peripheral, characteristic});
    }
    void readRSSI(const UUID& peripheral) override { give({"readRSSI", peripheral}); }

private:
    void give(const TraceCommand& command) { player_->given(command); }

    std::shared_ptr<TracePlayer> player_;
};

}  // namespace InkoraKit
