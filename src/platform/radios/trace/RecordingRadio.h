#pragma once

#include "platform/bluetooth/radio.h"
#include "platform/radios/trace/TraceRecorder.h"

#include <memory>

namespace InkoraKit {

/// Stands between a radio and its listener, and writes down what passes.
class RecordingRadio final : public Radio, private RadioListener {
public:
    RecordingRadio(std::unique_ptr<Radio> radio, std::shared_ptr<TraceRecorder> recorder);
    ~RecordingRadio() override;

    RadioCapabilities capabilities() const override { return radio_->capabilities(); }
    CBManagerStateReason stateReason() const override { return radio_->stateReason(); }
    void start(RadioListener& listener) override;
    void startScan() override;
    void stopScan() override;
    void connect(const UUID& peripheral) override;
    void disconnect(const UUID& peripheral) override;
    void discoverServices(const UUID& peripheral) override;
    void discoverCharacteristics(const UUID& peripheral, AttributeHandle service) override;
    void read(const UUID& peripheral, AttributeHandle characteristic) override;
    void subscribe(const UUID& peripheral, AttributeHandle characteristic, bool on) override;
    void readRSSI(const UUID& peripheral) override;

private:
    void adapterStateChanged(CBManagerState state) override;
    void sighted(const Sighting& sighting) override;
    void nameChanged(const UUID& peripheral, const std::string& name) override;
    void connected(const UUID& peripheral) override;
    void connectionFailed(const UUID& peripheral, const NSError& error) override;
    void disconnected(const UUID& peripheral, const std::optional<NSError>& error) override;
    void servicesDiscovered(const UUID& peripheral, std::vector<RemoteService> services,
                            const std::optional<NSError>& error) override;
    void characteristicsDiscovered(const UUID& peripheral, AttributeHandle service,
                                   std::vector<RemoteCharacteristic> characteristics,
                                   const std::optional<NSError>& error) override;
    void servicesInvalidated(const UUID& peripheral,
                             const std::vector<AttributeHandle>& services) override;
    void valueRead(const UUID& peripheral, AttributeHandle characteristic,
                   std::optional<Data> value, const std::optional<NSError>& error) override;
    void valueNotified(const UUID& peripheral, AttributeHandle characteristic,
                       std::optional<Data> value) override;
    void subscriptionChanged(const UUID& peripheral, AttributeHandle characteristic,
                             bool isNotifying, const std::optional<NSError>& error) override;
    void rssiRead(const UUID& peripheral, std::optional<int> rssi,
                  const std::optional<NSError>& error) override;

    bool isRecording() const { return recorder_->isRecording(); }
    void command(const char* name) { recorder_->write("do", name, nullptr); }
    void command(const char* name, const UUID& peripheral) {
        recorder_->write("do", name, &peripheral);
    }
    void command(const char* name, const UUID& peripheral, AttributeHandle handle) {
        recorder_->write("do", name, &peripheral, {{"handle", handle}});
    }
    void event(const char* name, const UUID& peripheral, TraceRecorder::Fields fields = {}) {
        recorder_->write("event", name, &peripheral, fields);
    }
    Any masked(const std::optional<std::string>& text) const;
    Any shown(const std::optional<NSError>& error) const;

    std::shared_ptr<TraceRecorder> recorder_;
    RadioListener* listener_ = nullptr;
    std::unique_ptr<Radio> radio_;  // which reports here as long as it lives
};

}  // namespace InkoraKit
