#pragma once

#include "platform/radios/trace/TracePlayer.h"

#include <memory>
#include <utility>

namespace InkoraKit {

/// A central manager's way into a trace that is played. Without a player there is no adapter.
class ReplayPort final : public Radio {
public:
    explicit ReplayPort(std::shared_ptr<TracePlayer> player) : player_(std::move(player)) {}
    ~ReplayPort() override {
        if (player_) player_->stop();
    }
    ReplayPort(const ReplayPort&) = delete;
    ReplayPort& operator=(const ReplayPort&) = delete;

    RadioCapabilities capabilities() const override {
        return player_ ? player_->answers().capabilities : RadioCapabilities{.canReadRSSI = false};
    }
    CBManagerStateReason stateReason() const override {
        return player_ ? player_->answers().reason : CBManagerStateReason::noAdapter;
    }
    void start(RadioListener& listener) override {
        if (player_) return player_->start(listener);
        listener.adapterStateChanged(CBManagerState::unsupported);
    }
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
    void give(const TraceCommand& command) {
        if (player_) player_->given(command);
    }

    std::shared_ptr<TracePlayer> player_;
};

}  // namespace InkoraKit
